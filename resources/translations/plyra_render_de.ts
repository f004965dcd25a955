<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>plyra::FrameView</name>
    <message>
        <location filename="../../src/render/windows/frame_view.cpp" line="12"/>
        <source>Rendered frame</source>
        <translation>Berechnetes Bild</translation>
    </message>
</context>
<context>
    <name>plyra::FrameWindow</name>
    <message>
        <location filename="../../src/render/windows/frame_window.cpp" line="21"/>
        <source>Rendered image</source>
        <translation>Berechnetes Bild</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/frame_window.cpp" line="35"/>
        <location filename="../../src/render/windows/frame_window.cpp" line="38"/>
        <source>Morph position</source>
        <translation>Morph-Position</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/frame_window.cpp" line="36"/>
        <source>The morph time of the frame</source>
        <translation>Der Morph-Zeitpunkt des Bildes</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/frame_window.cpp" line="89"/>
        <source>%1 rendered image %2%</source>
        <translation>%1 berechnetes Bild %2 %</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/frame_window.cpp" line="100"/>
        <source>JPEG image (*.jpg *.jpeg)</source>
        <translation>JPEG-Bild (*.jpg *.jpeg)</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/frame_window.cpp" line="100"/>
        <source>PNG image, lossless (*.png)</source>
        <translation>PNG-Bild, verlustfrei (*.png)</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/frame_window.cpp" line="100"/>
        <source>TIFF image, lossless (*.tif *.tiff)</source>
        <translation>TIFF-Bild, verlustfrei (*.tif *.tiff)</translation>
    </message>
</context>
<context>
    <name>plyra::MoviePictureView</name>
    <message>
        <location filename="../../src/render/windows/movie_picture_view.cpp" line="12"/>
        <source>Movie</source>
        <translation>Film</translation>
    </message>
</context>
<context>
    <name>plyra::MoviePlayer</name>
    <message>
        <location filename="../../src/render/windows/movie_player.cpp" line="46"/>
        <source>Movie player</source>
        <translation>Filmwiedergabe</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_player.cpp" line="66"/>
        <source>Movie controls</source>
        <translation>Filmsteuerung</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_player.cpp" line="69"/>
        <location filename="../../src/render/windows/movie_player.cpp" line="202"/>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_player.cpp" line="70"/>
        <source>Step backward</source>
        <translation>Ein Bild zurück</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_player.cpp" line="71"/>
        <source>Step forward</source>
        <translation>Ein Bild vor</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_player.cpp" line="73"/>
        <source>Position</source>
        <translation>Position</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_player.cpp" line="76"/>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_player.cpp" line="202"/>
        <source>Pause</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_player.cpp" line="210"/>
        <source>%1 / %2</source>
        <translation>%1 / %2</translation>
    </message>
</context>
<context>
    <name>plyra::MovieSettingsSheet</name>
    <message>
        <location filename="../../src/render/windows/movie_settings_sheet.cpp" line="18"/>
        <source>Pixlet (best for editing)</source>
        <translation>Pixlet (am besten zum Bearbeiten)</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_settings_sheet.cpp" line="19"/>
        <source>H.264 (best compression)</source>
        <translation>H.264 (beste Kompression)</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_settings_sheet.cpp" line="20"/>
        <source>mpeg 4 (best compatability)</source>
        <translation>MPEG-4 (beste Kompatibilität)</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_settings_sheet.cpp" line="21"/>
        <source>Animation (handles transparency)</source>
        <translation>Animation (mit Transparenz)</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_settings_sheet.cpp" line="22"/>
        <source>Motion JPEG B</source>
        <translation>Motion JPEG B</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_settings_sheet.cpp" line="23"/>
        <source>Min/smallest</source>
        <translation>Minimal/am kleinsten</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_settings_sheet.cpp" line="24"/>
        <source>Low/small</source>
        <translation>Niedrig/klein</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_settings_sheet.cpp" line="25"/>
        <source>Normal/medium</source>
        <translation>Normal/mittel</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_settings_sheet.cpp" line="26"/>
        <source>High/large</source>
        <translation>Hoch/groß</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_settings_sheet.cpp" line="27"/>
        <source>Max/largest</source>
        <translation>Maximal/am größten</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_settings_sheet.cpp" line="47"/>
        <source>Codec</source>
        <translation>Codec</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_settings_sheet.cpp" line="49"/>
        <source>Quality</source>
        <translation>Qualität</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_settings_sheet.cpp" line="50"/>
        <source>Codec:</source>
        <translation>Codec:</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_settings_sheet.cpp" line="51"/>
        <source>Quality:</source>
        <translation>Qualität:</translation>
    </message>
</context>
<context>
    <name>plyra::MovieWindow</name>
    <message>
        <location filename="../../src/render/windows/movie_window.cpp" line="24"/>
        <source>Rendered movie</source>
        <translation>Berechneter Film</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_window.cpp" line="83"/>
        <source>The movie cannot be rendered: %1</source>
        <translation>Der Film kann nicht berechnet werden: %1</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_window.cpp" line="106"/>
        <source>The movie could not be completed: %1</source>
        <translation>Der Film konnte nicht fertiggestellt werden: %1</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_window.cpp" line="120"/>
        <source>%1 rendering movie (%2%)</source>
        <translation>%1 Film wird berechnet (%2 %)</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_window.cpp" line="121"/>
        <source>%1 rendered movie</source>
        <translation>%1 berechneter Film</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_window.cpp" line="158"/>
        <source>QuickTime movie (*.mov)</source>
        <translation>QuickTime-Film (*.mov)</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/movie_window.cpp" line="158"/>
        <source>Animated GIF, looping (*.gif)</source>
        <translation>Animiertes GIF, in Schleife (*.gif)</translation>
    </message>
</context>
<context>
    <name>plyra::PreviewDock</name>
    <message>
        <location filename="../../src/render/windows/preview_dock.cpp" line="15"/>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/preview_dock.cpp" line="21"/>
        <source>Preview strip</source>
        <translation>Vorschauleiste</translation>
    </message>
</context>
<context>
    <name>plyra::PreviewStripView</name>
    <message>
        <location filename="../../src/render/windows/preview_strip_view.cpp" line="22"/>
        <source>Preview frames</source>
        <translation>Vorschaubilder</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/preview_strip_view.cpp" line="23"/>
        <source>Frames of the morph from the first image to the last, with the lines drawn over them</source>
        <translation>Bilder des Morphs vom ersten bis zum letzten Bild, mit den Linien darüber</translation>
    </message>
</context>
<context>
    <name>plyra::ProgressPie</name>
    <message>
        <location filename="../../src/render/windows/progress_pie.cpp" line="20"/>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/progress_pie.cpp" line="21"/>
        <source>Progress; click to render again</source>
        <translation>Fortschritt; klicken, um neu zu berechnen</translation>
    </message>
</context>
<context>
    <name>plyra::RenderSaveDialog</name>
    <message>
        <location filename="../../src/render/windows/render_save_dialog.cpp" line="31"/>
        <location filename="../../src/render/windows/render_save_dialog.cpp" line="33"/>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_save_dialog.cpp" line="61"/>
        <location filename="../../src/render/windows/render_save_dialog.cpp" line="64"/>
        <source>Saving failed</source>
        <translation>Speichern fehlgeschlagen</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_save_dialog.cpp" line="61"/>
        <source>Could not save to %1</source>
        <translation>Konnte nicht unter %1 speichern</translation>
    </message>
</context>
<context>
    <name>plyra::RenderSettingsSheet</name>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="43"/>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="44"/>
        <source>Render Settings</source>
        <translation>Berechnungseinstellungen</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="58"/>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="59"/>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="67"/>
        <source>Number of frames</source>
        <translation>Anzahl der Bilder</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="68"/>
        <source>Frames per second</source>
        <translation>Bilder pro Sekunde</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="70"/>
        <source>Total duration</source>
        <translation>Gesamtdauer</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="71"/>
        <source>Reverse (last image first)</source>
        <translation>Rückwärts (letztes Bild zuerst)</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="72"/>
        <source>Reverse</source>
        <translation>Rückwärts</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="73"/>
        <source>Frames:</source>
        <translation>Bilder:</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="74"/>
        <source>Frames per second:</source>
        <translation>Bilder pro Sekunde:</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="83"/>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="84"/>
        <source>Size to window</source>
        <translation>Fenstergröße</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="85"/>
        <source>Fixed size:</source>
        <translation>Feste Größe:</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="86"/>
        <source>Fixed size</source>
        <translation>Feste Größe</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="90"/>
        <source>Frame width</source>
        <translation>Bildbreite</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="91"/>
        <source>Frame height</source>
        <translation>Bildhöhe</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="95"/>
        <source>×</source>
        <translation>×</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="97"/>
        <source>pixels</source>
        <translation>Pixel</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="99"/>
        <source>Frame ratio</source>
        <translation>Seitenverhältnis</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="100"/>
        <source>Frame size:</source>
        <translation>Bildgröße:</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="102"/>
        <source>Ratio:</source>
        <translation>Verhältnis:</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="115"/>
        <source>As first image</source>
        <translation>Wie erstes Bild</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="115"/>
        <source>As last image</source>
        <translation>Wie letztes Bild</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="115"/>
        <source>Free</source>
        <translation>Frei</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_settings_sheet.cpp" line="155"/>
        <source>total: %1 seconds</source>
        <translation>insgesamt: %1 Sekunden</translation>
    </message>
</context>
<context>
    <name>plyra::RenderToolbar</name>
    <message>
        <location filename="../../src/render/windows/render_toolbar.cpp" line="18"/>
        <location filename="../../src/render/windows/render_toolbar.cpp" line="19"/>
        <source>Toolbar</source>
        <translation>Werkzeugleiste</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_toolbar.cpp" line="24"/>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
</context>
<context>
    <name>plyra::RenderWindow</name>
    <message>
        <location filename="../../src/render/windows/render_window.cpp" line="24"/>
        <source>Untitled</source>
        <translation>Unbenannt</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_window.cpp" line="30"/>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_window.cpp" line="46"/>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_window.cpp" line="47"/>
        <source>Save the rendered result</source>
        <translation>Das berechnete Ergebnis speichern</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_window.cpp" line="51"/>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <location filename="../../src/render/windows/render_window.cpp" line="52"/>
        <source>Change the render settings</source>
        <translation>Die Berechnungseinstellungen ändern</translation>
    </message>
</context>
</TS>
