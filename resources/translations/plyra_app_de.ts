<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>DocumentPrompts</name>
    <message>
        <location filename="../../src/app/document_prompts.cpp" line="22"/>
        <source>Save Changes</source>
        <translation>Änderungen speichern</translation>
    </message>
    <message>
        <location filename="../../src/app/document_prompts.cpp" line="23"/>
        <source>Do you want to save the changes made to the document &quot;%1&quot;?</source>
        <translation>Möchten Sie die Änderungen am Dokument „%1“ speichern?</translation>
    </message>
    <message>
        <location filename="../../src/app/document_prompts.cpp" line="25"/>
        <source>Your changes will be lost if you don&apos;t save them.</source>
        <translation>Ihre Änderungen gehen verloren, wenn Sie sie nicht speichern.</translation>
    </message>
    <message>
        <location filename="../../src/app/document_prompts.cpp" line="27"/>
        <source>Don&apos;t Save</source>
        <translation>Nicht speichern</translation>
    </message>
    <message>
        <location filename="../../src/app/document_prompts.cpp" line="41"/>
        <source>Revert to Saved</source>
        <translation>Letzte Version wiederherstellen</translation>
    </message>
    <message>
        <location filename="../../src/app/document_prompts.cpp" line="42"/>
        <source>Do you want to revert &quot;%1&quot; to the version saved last?</source>
        <translation>Möchten Sie „%1“ auf die zuletzt gespeicherte Version zurücksetzen?</translation>
    </message>
    <message>
        <location filename="../../src/app/document_prompts.cpp" line="44"/>
        <source>Your current changes will be lost.</source>
        <translation>Ihre aktuellen Änderungen gehen verloren.</translation>
    </message>
    <message>
        <location filename="../../src/app/document_prompts.cpp" line="45"/>
        <source>Revert</source>
        <translation>Zurücksetzen</translation>
    </message>
</context>
<context>
    <name>DocumentToolbar</name>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="34"/>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="35"/>
        <source>Inspector</source>
        <translation>Inspektor</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="36"/>
        <source>Render image</source>
        <translation>Bild berechnen</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="36"/>
        <source>Render morph image</source>
        <translation>Verwandlungsbild berechnen</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="37"/>
        <source>Render movie</source>
        <translation>Film berechnen</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="37"/>
        <source>Render morph movie</source>
        <translation>Verwandlungsfilm berechnen</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="38"/>
        <source>Zoom in</source>
        <translation>Vergrößern</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="38"/>
        <source>Zoom in editor</source>
        <translation>Editoren vergrößern</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="39"/>
        <source>Zoom out</source>
        <translation>Verkleinern</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="39"/>
        <source>Zoom out editor</source>
        <translation>Editoren verkleinern</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="40"/>
        <source>Center</source>
        <translation>Zentrieren</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="40"/>
        <source>Center selection</source>
        <translation>Auswahl zentrieren</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="41"/>
        <location filename="../../src/app/document_toolbar.cpp" line="101"/>
        <source>line colour</source>
        <translation>Linienfarbe</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="41"/>
        <source>Background colour</source>
        <translation>Linienfarbe</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="42"/>
        <source>Colours</source>
        <translation>Farben</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="42"/>
        <source>Show Colours</source>
        <translation>Farben einblenden</translation>
    </message>
</context>
<context>
    <name>MainMenu</name>
    <message>
        <location filename="../../src/app/main_menu.cpp" line="29"/>
        <source>No Recent Documents</source>
        <translation>Keine zuletzt benutzten Dokumente</translation>
    </message>
    <message>
        <location filename="../../src/app/main_menu.cpp" line="31"/>
        <source>Clear Menu</source>
        <translation>Liste leeren</translation>
    </message>
    <message>
        <location filename="../../src/app/main_menu.cpp" line="44"/>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <location filename="../../src/app/main_menu.cpp" line="47"/>
        <source>Open &amp;Recent</source>
        <translation>&amp;Zuletzt benutzt</translation>
    </message>
    <message>
        <location filename="../../src/app/main_menu.cpp" line="58"/>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <location filename="../../src/app/main_menu.cpp" line="64"/>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <location filename="../../src/app/main_menu.cpp" line="72"/>
        <source>&amp;Render</source>
        <translation>Be&amp;rechnen</translation>
    </message>
    <message>
        <location filename="../../src/app/main_menu.cpp" line="76"/>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
</context>
<context>
    <name>MorphAppController</name>
    <message>
        <location filename="../../src/app/update_alerts.cpp" line="15"/>
        <source>New version found</source>
        <translation>Neue Version gefunden</translation>
    </message>
    <message>
        <location filename="../../src/app/update_alerts.cpp" line="16"/>
        <source>The latest version of Plyra is %1 and your running %2.</source>
        <translation>Die neueste Version von Plyra ist %1, Sie verwenden %2.</translation>
    </message>
    <message>
        <location filename="../../src/app/update_alerts.cpp" line="19"/>
        <source>Open Plyra home page</source>
        <translation>Plyra-Webseite öffnen</translation>
    </message>
    <message>
        <location filename="../../src/app/update_alerts.cpp" line="20"/>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <location filename="../../src/app/update_alerts.cpp" line="28"/>
        <source>Plyra is up to date</source>
        <translation>Plyra ist auf dem neuesten Stand</translation>
    </message>
    <message>
        <location filename="../../src/app/update_alerts.cpp" line="33"/>
        <source>Check for Updates</source>
        <translation>Nach Aktualisierungen suchen</translation>
    </message>
    <message>
        <location filename="../../src/app/update_alerts.cpp" line="34"/>
        <source>No update address is set. To check for updates, set versionCheckURL in %1 to the address of a version list.</source>
        <translation>Es ist keine Adresse für Aktualisierungen eingestellt. Um nach Aktualisierungen zu suchen, setzen Sie versionCheckURL in %1 auf die Adresse einer Versionsliste.</translation>
    </message>
</context>
<context>
    <name>PackageFileDialog</name>
    <message>
        <location filename="../../src/app/package_file_dialog.cpp" line="64"/>
        <source>Open Document</source>
        <translation>Dokument öffnen</translation>
    </message>
    <message>
        <location filename="../../src/app/package_file_dialog.cpp" line="66"/>
        <location filename="../../src/app/package_file_dialog.cpp" line="80"/>
        <source>Plyra documents (*.plyra)</source>
        <translation>Plyra-Dokumente (*.plyra)</translation>
    </message>
    <message>
        <location filename="../../src/app/package_file_dialog.cpp" line="77"/>
        <location filename="../../src/app/package_file_dialog.cpp" line="98"/>
        <source>Save Document</source>
        <translation>Dokument speichern</translation>
    </message>
    <message>
        <location filename="../../src/app/package_file_dialog.cpp" line="99"/>
        <source>&quot;%1&quot; already exists. Do you want to replace it?</source>
        <translation>„%1“ existiert bereits. Möchten Sie es ersetzen?</translation>
    </message>
</context>
<context>
    <name>UndoAction</name>
    <message>
        <location filename="../../src/app/undo_action_names.cpp" line="11"/>
        <source>New Line</source>
        <translation>Neue Linie</translation>
    </message>
    <message>
        <location filename="../../src/app/undo_action_names.cpp" line="12"/>
        <source>Delete Line</source>
        <translation>Linie löschen</translation>
    </message>
    <message>
        <location filename="../../src/app/undo_action_names.cpp" line="13"/>
        <source>Set Image</source>
        <translation>Bild setzen</translation>
    </message>
    <message>
        <location filename="../../src/app/undo_action_names.cpp" line="14"/>
        <source>Change colour</source>
        <translation>Farbe ändern</translation>
    </message>
    <message>
        <location filename="../../src/app/undo_action_names.cpp" line="15"/>
        <source>Move Line</source>
        <translation>Linie bewegen</translation>
    </message>
    <message>
        <location filename="../../src/app/undo_action_names.cpp" line="16"/>
        <source>Change settings</source>
        <translation>Einstellungen ändern</translation>
    </message>
    <message>
        <location filename="../../src/app/undo_action_names.cpp" line="17"/>
        <source>Connect line</source>
        <translation>Linie verbinden</translation>
    </message>
    <message>
        <location filename="../../src/app/undo_action_names.cpp" line="18"/>
        <source>Disconnect line</source>
        <translation>Linie trennen</translation>
    </message>
    <message>
        <location filename="../../src/app/undo_action_names.cpp" line="19"/>
        <source>Create lines</source>
        <translation>Linien erstellen</translation>
    </message>
</context>
<context>
    <name>WindowActions</name>
    <message>
        <location filename="../../src/app/morph_editor_window_controller.cpp" line="308"/>
        <location filename="../../src/app/window_actions.cpp" line="34"/>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <location filename="../../src/app/morph_editor_window_controller.cpp" line="309"/>
        <source>&amp;Undo %1</source>
        <translation>&amp;Rückgängig: %1</translation>
    </message>
    <message>
        <location filename="../../src/app/morph_editor_window_controller.cpp" line="310"/>
        <location filename="../../src/app/window_actions.cpp" line="35"/>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederholen</translation>
    </message>
    <message>
        <location filename="../../src/app/morph_editor_window_controller.cpp" line="311"/>
        <source>&amp;Redo %1</source>
        <translation>&amp;Wiederholen: %1</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="25"/>
        <source>&amp;New</source>
        <translation>&amp;Neu</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="26"/>
        <source>&amp;Open…</source>
        <translation>Ö&amp;ffnen …</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="27"/>
        <source>Choose &amp;First Image…</source>
        <translation>&amp;Erstes Bild wählen …</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="28"/>
        <source>Choose &amp;Last Image…</source>
        <translation>&amp;Letztes Bild wählen …</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="29"/>
        <source>&amp;Close</source>
        <translation>&amp;Schließen</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="30"/>
        <source>&amp;Save</source>
        <translation>&amp;Speichern</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="31"/>
        <source>Save &amp;As…</source>
        <translation>Speichern &amp;unter …</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="32"/>
        <source>&amp;Revert to Saved</source>
        <translation>Letzte &amp;Version wiederherstellen</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="33"/>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="36"/>
        <source>&amp;Delete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="37"/>
        <source>Select &amp;All</source>
        <translation>&amp;Alles auswählen</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="38"/>
        <source>Select &amp;None</source>
        <translation>&amp;Nichts auswählen</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="39"/>
        <source>Select A&amp;ttached Lines</source>
        <translation>&amp;Verbundene Linien auswählen</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="40"/>
        <source>Zoom &amp;In</source>
        <translation>&amp;Vergrößern</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="41"/>
        <source>Zoom &amp;Out</source>
        <translation>Ver&amp;kleinern</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="42"/>
        <source>&amp;Center Selection</source>
        <translation>Auswahl &amp;zentrieren</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="43"/>
        <source>&amp;Preview</source>
        <translation>Vor&amp;schau</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="44"/>
        <source>&amp;Inspector</source>
        <translation>&amp;Inspektor</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="45"/>
        <source>Customize &amp;Toolbar…</source>
        <translation>&amp;Werkzeugleiste anpassen …</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="46"/>
        <source>Render &amp;Image…</source>
        <translation>&amp;Bild berechnen …</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="47"/>
        <source>Render &amp;Movie…</source>
        <translation>&amp;Film berechnen …</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="48"/>
        <source>Plyra &amp;Help</source>
        <translation>Plyra-&amp;Hilfe</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="49"/>
        <source>&amp;Getting Started</source>
        <translation>&amp;Erste Schritte</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="50"/>
        <source>The Line &amp;Editors</source>
        <translation>Die Linien&amp;editoren</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="51"/>
        <source>&amp;Timing</source>
        <translation>&amp;Zeitverlauf</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="52"/>
        <source>&amp;Rendering</source>
        <translation>&amp;Berechnen</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="53"/>
        <source>Check for &amp;Updates…</source>
        <translation>Nach &amp;Aktualisierungen suchen …</translation>
    </message>
    <message>
        <location filename="../../src/app/window_actions.cpp" line="54"/>
        <source>&amp;About Plyra</source>
        <translation>&amp;Über Plyra</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <location filename="../../src/app/main.cpp" line="17"/>
        <source>Morphs one still image into another.</source>
        <translation>Verwandelt ein Standbild in ein anderes.</translation>
    </message>
    <message>
        <location filename="../../src/app/main.cpp" line="21"/>
        <source>Documents (*.plyra) to open, or a first and a last image for a new document.</source>
        <translation>Zu öffnende Dokumente (*.plyra), oder ein erstes und ein letztes Bild für ein neues Dokument.</translation>
    </message>
</context>
<context>
    <name>plyra::DocumentManager</name>
    <message>
        <location filename="../../src/app/document_manager.cpp" line="46"/>
        <source>Untitled</source>
        <translation>Unbenannt</translation>
    </message>
    <message>
        <location filename="../../src/app/document_manager.cpp" line="46"/>
        <source>Untitled %1</source>
        <translation>Unbenannt %1</translation>
    </message>
    <message>
        <location filename="../../src/app/document_manager.cpp" line="75"/>
        <source>The image &quot;%1&quot; could not be opened.</source>
        <translation>Das Bild „%1“ konnte nicht geöffnet werden.</translation>
    </message>
    <message>
        <location filename="../../src/app/document_manager.cpp" line="104"/>
        <source>It is not a Plyra document (a folder named *.plyra).</source>
        <translation>Es ist kein Plyra-Dokument (ein Ordner namens *.plyra).</translation>
    </message>
    <message>
        <location filename="../../src/app/document_manager.cpp" line="104"/>
        <source>There is no such document.</source>
        <translation>Dieses Dokument gibt es nicht.</translation>
    </message>
    <message>
        <location filename="../../src/app/document_manager.cpp" line="107"/>
        <source>The document is damaged.</source>
        <translation>Das Dokument ist beschädigt.</translation>
    </message>
    <message>
        <location filename="../../src/app/document_manager.cpp" line="112"/>
        <location filename="../../src/app/document_manager.cpp" line="163"/>
        <source>The document &quot;%1&quot; could not be opened.</source>
        <translation>Das Dokument „%1“ konnte nicht geöffnet werden.</translation>
    </message>
    <message>
        <location filename="../../src/app/document_manager.cpp" line="126"/>
        <location filename="../../src/app/document_manager.cpp" line="149"/>
        <source>The document &quot;%1&quot; could not be saved as &quot;%2&quot;.</source>
        <translation>Das Dokument „%1“ konnte nicht als „%2“ gespeichert werden.</translation>
    </message>
    <message>
        <location filename="../../src/app/document_manager.cpp" line="150"/>
        <source>A document of that name is open in another window.</source>
        <translation>Ein Dokument dieses Namens ist in einem anderen Fenster geöffnet.</translation>
    </message>
</context>
<context>
    <name>plyra::DocumentToolbar</name>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="85"/>
        <location filename="../../src/app/document_toolbar.cpp" line="89"/>
        <source>Toolbar</source>
        <translation>Werkzeugleiste</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="96"/>
        <source>Customize Toolbar…</source>
        <translation>Werkzeugleiste anpassen …</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="203"/>
        <source>Flexible Space</source>
        <translation>Flexibler Abstand</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="205"/>
        <source>Space</source>
        <translation>Abstand</translation>
    </message>
    <message>
        <location filename="../../src/app/document_toolbar.cpp" line="207"/>
        <source>Separator</source>
        <translation>Trennlinie</translation>
    </message>
</context>
<context>
    <name>plyra::HelpWindow</name>
    <message>
        <location filename="../../src/app/help_window.cpp" line="33"/>
        <source>Plyra Help</source>
        <translation>Plyra-Hilfe</translation>
    </message>
    <message>
        <location filename="../../src/app/help_window.cpp" line="36"/>
        <source>Help page</source>
        <translation>Hilfeseite</translation>
    </message>
    <message>
        <location filename="../../src/app/help_window.cpp" line="39"/>
        <source>Navigation</source>
        <translation>Navigation</translation>
    </message>
    <message>
        <location filename="../../src/app/help_window.cpp" line="42"/>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <location filename="../../src/app/help_window.cpp" line="44"/>
        <source>Forward</source>
        <translation>Vor</translation>
    </message>
    <message>
        <location filename="../../src/app/help_window.cpp" line="46"/>
        <source>Contents</source>
        <translation>Inhalt</translation>
    </message>
    <message>
        <location filename="../../src/app/help_window.cpp" line="53"/>
        <source>Plyra Help: %1</source>
        <translation>Plyra-Hilfe: %1</translation>
    </message>
</context>
<context>
    <name>plyra::ImageChooser</name>
    <message>
        <location filename="../../src/app/image_chooser.cpp" line="21"/>
        <source>Images (%1)</source>
        <translation>Bilder (%1)</translation>
    </message>
    <message>
        <location filename="../../src/app/image_chooser.cpp" line="21"/>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <location filename="../../src/app/image_chooser.cpp" line="43"/>
        <source>Choose First Image</source>
        <translation>Erstes Bild wählen</translation>
    </message>
    <message>
        <location filename="../../src/app/image_chooser.cpp" line="43"/>
        <source>Choose Last Image</source>
        <translation>Letztes Bild wählen</translation>
    </message>
</context>
<context>
    <name>plyra::LineColorWell</name>
    <message>
        <location filename="../../src/app/line_color_well.cpp" line="16"/>
        <location filename="../../src/app/line_color_well.cpp" line="32"/>
        <source>Line colour</source>
        <translation>Linienfarbe</translation>
    </message>
    <message>
        <location filename="../../src/app/line_color_well.cpp" line="17"/>
        <source>The colour in which lines are drawn</source>
        <translation>Die Farbe, in der Linien gezeichnet werden</translation>
    </message>
</context>
<context>
    <name>plyra::MorphEditorWindowController</name>
    <message>
        <location filename="../../src/app/morph_editor_window_controller.cpp" line="159"/>
        <source>First image</source>
        <translation>Erstes Bild</translation>
    </message>
    <message>
        <location filename="../../src/app/morph_editor_window_controller.cpp" line="160"/>
        <source>Last image</source>
        <translation>Letztes Bild</translation>
    </message>
    <message>
        <location filename="../../src/app/morph_editor_window_controller.cpp" line="295"/>
        <source>%1[*] — Plyra</source>
        <translation>%1[*] — Plyra</translation>
    </message>
</context>
<context>
    <name>plyra::PlyraApplication</name>
    <message>
        <location filename="../../src/app/plyra_application.cpp" line="202"/>
        <source>About Plyra</source>
        <translation>Über Plyra</translation>
    </message>
    <message>
        <location filename="../../src/app/plyra_application.cpp" line="203"/>
        <source>&lt;h3&gt;Plyra %1&lt;/h3&gt;&lt;p&gt;Morphs one still image into another through pairs of corresponding lines.&lt;/p&gt;&lt;p&gt;Licensed under the MIT licence.&lt;/p&gt;</source>
        <translation>&lt;h3&gt;Plyra %1&lt;/h3&gt;&lt;p&gt;Verwandelt ein Standbild über Paare einander entsprechender Linien in ein anderes.&lt;/p&gt;&lt;p&gt;Lizenziert unter der MIT-Lizenz.&lt;/p&gt;</translation>
    </message>
</context>
<context>
    <name>plyra::ToolbarCustomizeDialog</name>
    <message>
        <location filename="../../src/app/toolbar_customize_dialog.cpp" line="17"/>
        <source>Customize Toolbar</source>
        <translation>Werkzeugleiste anpassen</translation>
    </message>
    <message>
        <location filename="../../src/app/toolbar_customize_dialog.cpp" line="18"/>
        <source>Toolbar items</source>
        <translation>Elemente der Werkzeugleiste</translation>
    </message>
    <message>
        <location filename="../../src/app/toolbar_customize_dialog.cpp" line="21"/>
        <source>Move Up</source>
        <translation>Nach oben</translation>
    </message>
    <message>
        <location filename="../../src/app/toolbar_customize_dialog.cpp" line="22"/>
        <source>Move Down</source>
        <translation>Nach unten</translation>
    </message>
    <message>
        <location filename="../../src/app/toolbar_customize_dialog.cpp" line="23"/>
        <source>Restore Defaults</source>
        <translation>Standard wiederherstellen</translation>
    </message>
    <message>
        <location filename="../../src/app/toolbar_customize_dialog.cpp" line="42"/>
        <source>Choose the items of the toolbar and their order:</source>
        <translation>Wählen Sie die Elemente der Werkzeugleiste und ihre Reihenfolge:</translation>
    </message>
</context>
</TS>
