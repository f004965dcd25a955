<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>plyra::CustomizableToolbar</name>
    <message>
        <source>Toolbar</source>
        <translation>Werkzeugleiste</translation>
    </message>
    <message>
        <source>Customize Toolbar…</source>
        <translation>Werkzeugleiste anpassen …</translation>
    </message>
    <message>
        <source>Flexible Space</source>
        <translation>Flexibler Abstand</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>Abstand</translation>
    </message>
    <message>
        <source>Separator</source>
        <translation>Trennlinie</translation>
    </message>
</context>
<context>
    <name>plyra::ToolbarCustomizeDialog</name>
    <message>
        <source>Customize Toolbar</source>
        <translation>Werkzeugleiste anpassen</translation>
    </message>
    <message>
        <source>Toolbar items</source>
        <translation>Elemente der Werkzeugleiste</translation>
    </message>
    <message>
        <source>Move Up</source>
        <translation>Nach oben</translation>
    </message>
    <message>
        <source>Move Down</source>
        <translation>Nach unten</translation>
    </message>
    <message>
        <source>Restore Defaults</source>
        <translation>Standard wiederherstellen</translation>
    </message>
    <message>
        <source>Choose the items of the toolbar and their order:</source>
        <translation>Wählen Sie die Elemente der Werkzeugleiste und ihre Reihenfolge:</translation>
    </message>
</context>
</TS>
