<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>plyra::FrameView</name>
    <message>
        <source>Rendered frame</source>
        <translation>Berechnetes Bild</translation>
    </message>
</context>
<context>
    <name>plyra::FrameWindow</name>
    <message>
        <source>Rendered image</source>
        <translation>Berechnetes Bild</translation>
    </message>
    <message>
        <source>Morph position</source>
        <translation>Morph-Position</translation>
    </message>
    <message>
        <source>The morph time of the frame</source>
        <translation>Der Morph-Zeitpunkt des Bildes</translation>
    </message>
    <message>
        <source>%1 rendered image %2%</source>
        <translation>%1 berechnetes Bild %2 %</translation>
    </message>
    <message>
        <source>JPEG image (*.jpg *.jpeg)</source>
        <translation>JPEG-Bild (*.jpg *.jpeg)</translation>
    </message>
    <message>
        <source>PNG image, lossless (*.png)</source>
        <translation>PNG-Bild, verlustfrei (*.png)</translation>
    </message>
    <message>
        <source>TIFF image, lossless (*.tif *.tiff)</source>
        <translation>TIFF-Bild, verlustfrei (*.tif *.tiff)</translation>
    </message>
    <message>
        <source>Morph time in percent</source>
        <translation>Morph-Zeitpunkt in Prozent</translation>
    </message>
    <message>
        <source> %</source>
        <translation> %</translation>
    </message>
    <message>
        <source>The exact morph time of the frame, from 0 % (the first image) to 100 % (the last)</source>
        <translation>Der genaue Morph-Zeitpunkt des Bildes, von 0 % (das erste Bild) bis 100 % (das letzte)</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Morph time</source>
        <translation>Morph-Zeitpunkt</translation>
    </message>
</context>
<context>
    <name>plyra::MovieExport</name>
    <message>
        <source>Saving “%1”…</source>
        <translation>„%1“ wird gesichert …</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Saving</source>
        <translation>Sichern</translation>
    </message>
    <message>
        <source>Writing “%1”…</source>
        <translation>„%1“ wird geschrieben …</translation>
    </message>
</context>
<context>
    <name>plyra::MoviePictureView</name>
    <message>
        <source>Movie</source>
        <translation>Film</translation>
    </message>
</context>
<context>
    <name>plyra::MoviePlayer</name>
    <message>
        <source>Movie player</source>
        <translation>Filmwiedergabe</translation>
    </message>
    <message>
        <source>Movie controls</source>
        <translation>Filmsteuerung</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <source>Step backward</source>
        <translation>Ein Bild zurück</translation>
    </message>
    <message>
        <source>Step forward</source>
        <translation>Ein Bild vor</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>Position</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>%1 / %2</source>
        <translation>%1 / %2</translation>
    </message>
</context>
<context>
    <name>plyra::MovieSettingsSheet</name>
    <message>
        <source>Pixlet (best for editing)</source>
        <translation>Pixlet (am besten zum Bearbeiten)</translation>
    </message>
    <message>
        <source>H.264 (best compression)</source>
        <translation>H.264 (beste Kompression)</translation>
    </message>
    <message>
        <source>mpeg 4 (best compatability)</source>
        <translation>MPEG-4 (beste Kompatibilität)</translation>
    </message>
    <message>
        <source>Animation (handles transparency)</source>
        <translation>Animation (mit Transparenz)</translation>
    </message>
    <message>
        <source>Motion JPEG B</source>
        <translation>Motion JPEG B</translation>
    </message>
    <message>
        <source>Min/smallest</source>
        <translation>Minimal/am kleinsten</translation>
    </message>
    <message>
        <source>Low/small</source>
        <translation>Niedrig/klein</translation>
    </message>
    <message>
        <source>Normal/medium</source>
        <translation>Normal/mittel</translation>
    </message>
    <message>
        <source>High/large</source>
        <translation>Hoch/groß</translation>
    </message>
    <message>
        <source>Max/largest</source>
        <translation>Maximal/am größten</translation>
    </message>
    <message>
        <source>Codec</source>
        <translation>Codec</translation>
    </message>
    <message>
        <source>Quality</source>
        <translation>Qualität</translation>
    </message>
    <message>
        <source>Codec:</source>
        <translation>Codec:</translation>
    </message>
    <message>
        <source>Quality:</source>
        <translation>Qualität:</translation>
    </message>
    <message>
        <source>Easing</source>
        <translation>Beschleunigung</translation>
    </message>
    <message>
        <source>Linear</source>
        <translation>Gleichmäßig</translation>
    </message>
    <message>
        <source>Ease In</source>
        <translation>Langsamer Beginn</translation>
    </message>
    <message>
        <source>Ease Out</source>
        <translation>Langsames Ende</translation>
    </message>
    <message>
        <source>Ease In and Out</source>
        <translation>Langsamer Beginn und Ende</translation>
    </message>
    <message>
        <source>How the morph speeds up and slows down over the movie</source>
        <translation>Wie der Morph im Lauf des Films schneller und langsamer wird</translation>
    </message>
    <message>
        <source>Easing:</source>
        <translation>Beschleunigung:</translation>
    </message>
    <message>
        <source>seconds</source>
        <translation>Sekunden</translation>
    </message>
    <message>
        <source>Hold first image:</source>
        <translation>Erstes Bild halten:</translation>
    </message>
    <message>
        <source>Hold at start</source>
        <translation>Am Anfang halten</translation>
    </message>
    <message>
        <source>Hold last image:</source>
        <translation>Letztes Bild halten:</translation>
    </message>
    <message>
        <source>Hold at end</source>
        <translation>Am Ende halten</translation>
    </message>
    <message>
        <source>Ping-pong (forth and back, for loops)</source>
        <translation>Ping-Pong (hin und zurück, für Schleifen)</translation>
    </message>
    <message>
        <source>Ping-pong</source>
        <translation>Ping-Pong</translation>
    </message>
</context>
<context>
    <name>plyra::MovieWindow</name>
    <message>
        <source>Rendered movie</source>
        <translation>Berechneter Film</translation>
    </message>
    <message>
        <source>The movie cannot be rendered: %1</source>
        <translation>Der Film kann nicht berechnet werden: %1</translation>
    </message>
    <message>
        <source>The movie could not be completed: %1</source>
        <translation>Der Film konnte nicht fertiggestellt werden: %1</translation>
    </message>
    <message>
        <source>%1 rendering movie (%2%)</source>
        <translation>%1 Film wird berechnet (%2 %)</translation>
    </message>
    <message>
        <source>%1 rendered movie</source>
        <translation>%1 berechneter Film</translation>
    </message>
    <message>
        <source>QuickTime movie (*.mov)</source>
        <translation>QuickTime-Film (*.mov)</translation>
    </message>
    <message>
        <source>Animated GIF, looping (*.gif)</source>
        <translation>Animiertes GIF, in Schleife (*.gif)</translation>
    </message>
    <message>
        <source>Do you want to save the movie of “%1”?</source>
        <translation>Möchten Sie den Film von „%1“ speichern?</translation>
    </message>
    <message>
        <source>MPEG-4 movie, H.264 (*.mp4)</source>
        <translation>MPEG-4-Film, H.264 (*.mp4)</translation>
    </message>
    <message>
        <source>WebM movie, VP9 (*.webm)</source>
        <translation>WebM-Film, VP9 (*.webm)</translation>
    </message>
    <message>
        <source>Animated WebP, looping (*.webp)</source>
        <translation>Animiertes WebP, in Schleife (*.webp)</translation>
    </message>
    <message>
        <source>Image sequence, a folder of numbered PNG frames (*)</source>
        <translation>Bildfolge, ein Ordner nummerierter PNG-Bilder (*)</translation>
    </message>
    <message>
        <source>The folder “%1” cannot be made.</source>
        <translation>Der Ordner „%1“ kann nicht angelegt werden.</translation>
    </message>
</context>
<context>
    <name>plyra::PreviewDock</name>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <source>Preview strip</source>
        <translation>Vorschauleiste</translation>
    </message>
</context>
<context>
    <name>plyra::PreviewStripView</name>
    <message>
        <source>Preview frames</source>
        <translation>Vorschaubilder</translation>
    </message>
    <message>
        <source>Frames of the morph from the first image to the last, with the lines drawn over them</source>
        <translation>Bilder des Morphs vom ersten bis zum letzten Bild, mit den Linien darüber</translation>
    </message>
</context>
<context>
    <name>plyra::ProgressPie</name>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Progress; click to render again</source>
        <translation>Fortschritt; klicken, um neu zu berechnen</translation>
    </message>
</context>
<context>
    <name>plyra::RenderSaveDialog</name>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Saving failed</source>
        <translation>Speichern fehlgeschlagen</translation>
    </message>
    <message>
        <source>Could not save to %1</source>
        <translation>Konnte nicht unter %1 speichern</translation>
    </message>
    <message>
        <source>It will be lost if you don&apos;t save it.</source>
        <translation>Er geht verloren, wenn Sie ihn nicht speichern.</translation>
    </message>
    <message>
        <source>Don&apos;t Save</source>
        <translation>Nicht speichern</translation>
    </message>
</context>
<context>
    <name>plyra::RenderSettingsSheet</name>
    <message>
        <source>Render Settings</source>
        <translation>Berechnungseinstellungen</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Number of frames</source>
        <translation>Anzahl der Bilder</translation>
    </message>
    <message>
        <source>Frames per second</source>
        <translation>Bilder pro Sekunde</translation>
    </message>
    <message>
        <source>Total duration</source>
        <translation>Gesamtdauer</translation>
    </message>
    <message>
        <source>Reverse (last image first)</source>
        <translation>Rückwärts (letztes Bild zuerst)</translation>
    </message>
    <message>
        <source>Reverse</source>
        <translation>Rückwärts</translation>
    </message>
    <message>
        <source>Frames:</source>
        <translation>Bilder:</translation>
    </message>
    <message>
        <source>Frames per second:</source>
        <translation>Bilder pro Sekunde:</translation>
    </message>
    <message>
        <source>Size to window</source>
        <translation>Fenstergröße</translation>
    </message>
    <message>
        <source>Fixed size:</source>
        <translation>Feste Größe:</translation>
    </message>
    <message>
        <source>Fixed size</source>
        <translation>Feste Größe</translation>
    </message>
    <message>
        <source>Frame width</source>
        <translation>Bildbreite</translation>
    </message>
    <message>
        <source>Frame height</source>
        <translation>Bildhöhe</translation>
    </message>
    <message>
        <source>×</source>
        <translation>×</translation>
    </message>
    <message>
        <source>pixels</source>
        <translation>Pixel</translation>
    </message>
    <message>
        <source>Frame ratio</source>
        <translation>Seitenverhältnis</translation>
    </message>
    <message>
        <source>Frame size:</source>
        <translation>Bildgröße:</translation>
    </message>
    <message>
        <source>Ratio:</source>
        <translation>Verhältnis:</translation>
    </message>
    <message>
        <source>As first image</source>
        <translation>Wie erstes Bild</translation>
    </message>
    <message>
        <source>As last image</source>
        <translation>Wie letztes Bild</translation>
    </message>
    <message>
        <source>Free</source>
        <translation>Frei</translation>
    </message>
    <message>
        <source>total: %1 seconds</source>
        <translation>insgesamt: %1 Sekunden</translation>
    </message>
    <message>
        <source>Document frame size</source>
        <translation>Bildgröße des Dokuments</translation>
    </message>
    <message>
        <source>Document frame size (%1 × %2 pixels)</source>
        <translation>Bildgröße des Dokuments (%1 × %2 Pixel)</translation>
    </message>
</context>
<context>
    <name>plyra::RenderToolbar</name>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
</context>
<context>
    <name>plyra::RenderWindow</name>
    <message>
        <source>Untitled</source>
        <translation>Unbenannt</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Save the rendered result</source>
        <translation>Das berechnete Ergebnis speichern</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Change the render settings</source>
        <translation>Die Berechnungseinstellungen ändern</translation>
    </message>
</context>
</TS>
