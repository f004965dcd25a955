<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>ImageDrop</name>
    <message>
        <source>Only files on this computer can be dropped here.</source>
        <translation>Hier können nur Dateien von diesem Computer abgelegt werden.</translation>
    </message>
    <message>
        <source>“%1” does not exist.</source>
        <translation>„%1“ existiert nicht.</translation>
    </message>
    <message>
        <source>“%1” cannot be read.</source>
        <translation>„%1“ kann nicht gelesen werden.</translation>
    </message>
    <message>
        <source>“%1” is not an image that Plyra can read.</source>
        <translation>„%1“ ist kein Bild, das Plyra lesen kann.</translation>
    </message>
</context>
<context>
    <name>plyra::MorphEditor</name>
    <message>
        <source>Line editor</source>
        <translation>Linieneditor</translation>
    </message>
    <message>
        <source>Drop an image here, or leave blank to just distort the first image.</source>
        <translation>Legen Sie hier ein Bild ab, oder lassen Sie das Feld leer, um nur das erste Bild zu verzerren.</translation>
    </message>
    <message>
        <source>Drop an image here.</source>
        <translation>Legen Sie hier ein Bild ab.</translation>
    </message>
    <message>
        <source>“%1” could not be used as the image: %2</source>
        <translation>„%1“ konnte nicht als Bild verwendet werden: %2</translation>
    </message>
    <message>
        <source>Shows one image of the morph with its lines. Click or drag to draw lines, drag a point or a line to move it, drag with the right button to select lines; Tab and Shift+Tab select the next and the previous line, arrow keys move the selected lines, Delete removes them and Escape clears the selection. Drop an image file here to use it.</source>
        <translation>Zeigt ein Bild der Verwandlung mit seinen Linien. Klicken oder ziehen Sie, um Linien zu zeichnen, ziehen Sie einen Punkt oder eine Linie, um sie zu bewegen, ziehen Sie mit der rechten Taste, um Linien auszuwählen; Tab und Umschalt+Tab wählen die nächste und die vorige Linie, die Pfeiltasten bewegen die ausgewählten Linien, Entf löscht sie und Esc hebt die Auswahl auf. Legen Sie hier eine Bilddatei ab, um sie zu verwenden.</translation>
    </message>
    <message>
        <source>Lines: %1, selected: %2</source>
        <translation>Linien: %1, ausgewählt: %2</translation>
    </message>
</context>
</TS>
