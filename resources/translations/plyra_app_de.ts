<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>DocumentPrompts</name>
    <message>
        <source>Save Changes</source>
        <translation>Änderungen speichern</translation>
    </message>
    <message>
        <source>Do you want to save the changes made to the document &quot;%1&quot;?</source>
        <translation>Möchten Sie die Änderungen am Dokument „%1“ speichern?</translation>
    </message>
    <message>
        <source>Your changes will be lost if you don&apos;t save them.</source>
        <translation>Ihre Änderungen gehen verloren, wenn Sie sie nicht speichern.</translation>
    </message>
    <message>
        <source>Don&apos;t Save</source>
        <translation>Nicht speichern</translation>
    </message>
    <message>
        <source>Revert to Saved</source>
        <translation>Letzte Version wiederherstellen</translation>
    </message>
    <message>
        <source>Do you want to revert &quot;%1&quot; to the version saved last?</source>
        <translation>Möchten Sie „%1“ auf die zuletzt gespeicherte Version zurücksetzen?</translation>
    </message>
    <message>
        <source>Your current changes will be lost.</source>
        <translation>Ihre aktuellen Änderungen gehen verloren.</translation>
    </message>
    <message>
        <source>Revert</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>Plyra found unsaved changes to “%1” from %2.</source>
        <translation>Plyra hat ungesicherte Änderungen an „%1“ vom %2 gefunden.</translation>
    </message>
    <message>
        <source>Recover opens the document with these changes, still to be saved. Discard deletes them.</source>
        <translation>„Wiederherstellen“ öffnet das Dokument mit diesen Änderungen, die noch zu speichern sind. „Verwerfen“ löscht sie.</translation>
    </message>
    <message>
        <source>Recover</source>
        <translation>Wiederherstellen</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>Verwerfen</translation>
    </message>
</context>
<context>
    <name>DocumentToolbar</name>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <source>Inspector</source>
        <translation>Inspektor</translation>
    </message>
    <message>
        <source>Render image</source>
        <translation>Bild berechnen</translation>
    </message>
    <message>
        <source>Render morph image</source>
        <translation>Verwandlungsbild berechnen</translation>
    </message>
    <message>
        <source>Render movie</source>
        <translation>Film berechnen</translation>
    </message>
    <message>
        <source>Render morph movie</source>
        <translation>Verwandlungsfilm berechnen</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>Vergrößern</translation>
    </message>
    <message>
        <source>Zoom in editor</source>
        <translation>Editoren vergrößern</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>Verkleinern</translation>
    </message>
    <message>
        <source>Zoom out editor</source>
        <translation>Editoren verkleinern</translation>
    </message>
    <message>
        <source>Center</source>
        <translation>Zentrieren</translation>
    </message>
    <message>
        <source>Center selection</source>
        <translation>Auswahl zentrieren</translation>
    </message>
    <message>
        <source>line colour</source>
        <translation>Linienfarbe</translation>
    </message>
    <message>
        <source>Background colour</source>
        <translation>Linienfarbe</translation>
    </message>
    <message>
        <source>Colours</source>
        <translation>Farben</translation>
    </message>
    <message>
        <source>Show Colours</source>
        <translation>Farben einblenden</translation>
    </message>
    <message>
        <source>Face Lines</source>
        <translation>Gesichtslinien</translation>
    </message>
    <message>
        <source>Add Face Lines</source>
        <translation>Gesichtslinien hinzufügen</translation>
    </message>
</context>
<context>
    <name>MainMenu</name>
    <message>
        <source>No Recent Documents</source>
        <translation>Keine zuletzt benutzten Dokumente</translation>
    </message>
    <message>
        <source>Clear Menu</source>
        <translation>Liste leeren</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>&amp;Zuletzt benutzt</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Render</source>
        <translation>Be&amp;rechnen</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
</context>
<context>
    <name>MorphAppController</name>
    <message>
        <source>New version found</source>
        <translation>Neue Version gefunden</translation>
    </message>
    <message>
        <source>The latest version of Plyra is %1 and your running %2.</source>
        <translation>Die neueste Version von Plyra ist %1, Sie verwenden %2.</translation>
    </message>
    <message>
        <source>Open Plyra home page</source>
        <translation>Plyra-Webseite öffnen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Plyra is up to date</source>
        <translation>Plyra ist auf dem neuesten Stand</translation>
    </message>
    <message>
        <source>Check for Updates</source>
        <translation>Nach Aktualisierungen suchen</translation>
    </message>
    <message>
        <source>No update address is set. To check for updates, set versionCheckURL in %1 to the address of a version list.</source>
        <translation>Es ist keine Adresse für Aktualisierungen eingestellt. Um nach Aktualisierungen zu suchen, setzen Sie versionCheckURL in %1 auf die Adresse einer Versionsliste.</translation>
    </message>
</context>
<context>
    <name>PackageFileDialog</name>
    <message>
        <source>Open Document</source>
        <translation>Dokument öffnen</translation>
    </message>
    <message>
        <source>Plyra documents (*.plyra)</source>
        <translation>Plyra-Dokumente (*.plyra)</translation>
    </message>
    <message>
        <source>Save Document</source>
        <translation>Dokument speichern</translation>
    </message>
    <message>
        <source>&quot;%1&quot; already exists. Do you want to replace it?</source>
        <translation>„%1“ existiert bereits. Möchten Sie es ersetzen?</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Speichern</translation>
    </message>
</context>
<context>
    <name>UndoAction</name>
    <message>
        <source>New Line</source>
        <translation>Neue Linie</translation>
    </message>
    <message>
        <source>Delete Line</source>
        <translation>Linie löschen</translation>
    </message>
    <message>
        <source>Set Image</source>
        <translation>Bild setzen</translation>
    </message>
    <message>
        <source>Change colour</source>
        <translation>Farbe ändern</translation>
    </message>
    <message>
        <source>Move Line</source>
        <translation>Linie bewegen</translation>
    </message>
    <message>
        <source>Change settings</source>
        <translation>Einstellungen ändern</translation>
    </message>
    <message>
        <source>Connect line</source>
        <translation>Linie verbinden</translation>
    </message>
    <message>
        <source>Disconnect line</source>
        <translation>Linie trennen</translation>
    </message>
    <message>
        <source>Create lines</source>
        <translation>Linien erstellen</translation>
    </message>
    <message>
        <source>Add Face Lines</source>
        <translation>Gesichtslinien hinzufügen</translation>
    </message>
    <message>
        <source>Transform Lines</source>
        <translation>Linien transformieren</translation>
    </message>
    <message>
        <source>Flip Lines</source>
        <translation>Linien spiegeln</translation>
    </message>
    <message>
        <source>Duplicate Lines</source>
        <translation>Linien duplizieren</translation>
    </message>
    <message>
        <source>Change Movie Settings</source>
        <translation>Filmeinstellungen ändern</translation>
    </message>
</context>
<context>
    <name>WindowActions</name>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>&amp;Undo %1</source>
        <translation>&amp;Rückgängig: %1</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederholen</translation>
    </message>
    <message>
        <source>&amp;Redo %1</source>
        <translation>&amp;Wiederholen: %1</translation>
    </message>
    <message>
        <source>&amp;New</source>
        <translation>&amp;Neu</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>Ö&amp;ffnen …</translation>
    </message>
    <message>
        <source>Choose &amp;First Image…</source>
        <translation>&amp;Erstes Bild wählen …</translation>
    </message>
    <message>
        <source>Choose &amp;Last Image…</source>
        <translation>&amp;Letztes Bild wählen …</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>S&amp;chließen</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Speichern</translation>
    </message>
    <message>
        <source>Save &amp;As…</source>
        <translation>Speichern &amp;unter …</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>Select &amp;All</source>
        <translation>&amp;Alles auswählen</translation>
    </message>
    <message>
        <source>Select &amp;None</source>
        <translation>&amp;Nichts auswählen</translation>
    </message>
    <message>
        <source>Select A&amp;ttached Lines</source>
        <translation>&amp;Verbundene Linien auswählen</translation>
    </message>
    <message>
        <source>Zoom &amp;In</source>
        <translation>&amp;Vergrößern</translation>
    </message>
    <message>
        <source>Zoom &amp;Out</source>
        <translation>Ver&amp;kleinern</translation>
    </message>
    <message>
        <source>&amp;Center Selection</source>
        <translation>Auswahl &amp;zentrieren</translation>
    </message>
    <message>
        <source>&amp;Preview</source>
        <translation>Vor&amp;schau</translation>
    </message>
    <message>
        <source>Customize &amp;Toolbar…</source>
        <translation>&amp;Werkzeugleiste anpassen …</translation>
    </message>
    <message>
        <source>Render &amp;Image…</source>
        <translation>&amp;Bild berechnen …</translation>
    </message>
    <message>
        <source>Render &amp;Movie…</source>
        <translation>&amp;Film berechnen …</translation>
    </message>
    <message>
        <source>Plyra &amp;Help</source>
        <translation>Plyra-&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;Getting Started</source>
        <translation>&amp;Erste Schritte</translation>
    </message>
    <message>
        <source>The Line &amp;Editors</source>
        <translation>Die &amp;Linieneditoren</translation>
    </message>
    <message>
        <source>&amp;Timing</source>
        <translation>&amp;Zeitverlauf</translation>
    </message>
    <message>
        <source>&amp;Rendering</source>
        <translation>&amp;Berechnen</translation>
    </message>
    <message>
        <source>Check for &amp;Updates…</source>
        <translation>Nach &amp;Aktualisierungen suchen …</translation>
    </message>
    <message>
        <source>&amp;About Plyra</source>
        <translation>&amp;Über Plyra</translation>
    </message>
    <message>
        <source>Show &amp;Inspector</source>
        <translation>&amp;Inspektor zeigen</translation>
    </message>
    <message>
        <source>Show &amp;Colours</source>
        <translation>&amp;Farben einblenden</translation>
    </message>
    <message>
        <source>Add &amp;Face Lines</source>
        <translation>&amp;Gesichtslinien hinzufügen</translation>
    </message>
    <message>
        <source>Re&amp;vert to Saved</source>
        <translation>Letzte &amp;Version wiederherstellen</translation>
    </message>
    <message>
        <source>Zoom to &amp;Fit</source>
        <translation>&amp;Einpassen</translation>
    </message>
    <message>
        <source>&amp;Actual Size</source>
        <translation>&amp;Originalgröße</translation>
    </message>
    <message>
        <source>I&amp;nspector</source>
        <translation>&amp;Inspektor</translation>
    </message>
    <message>
        <source>&amp;Predict Counterparts</source>
        <translation>Gegenstü&amp;cke vorhersagen</translation>
    </message>
    <message>
        <source>Place Selection by Predi&amp;ction</source>
        <translation>Auswahl &amp;per Vorhersage platzieren</translation>
    </message>
    <message>
        <source>Flip Selection &amp;Horizontally</source>
        <translation>Auswahl &amp;horizontal spiegeln</translation>
    </message>
    <message>
        <source>Dup&amp;licate</source>
        <translation>&amp;Duplizieren</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Morphs one still image into another.</source>
        <translation>Verwandelt ein Standbild in ein anderes.</translation>
    </message>
    <message>
        <source>Documents (*.plyra) to open, or a first and a last image for a new document.</source>
        <translation>Zu öffnende Dokumente (*.plyra), oder ein erstes und ein letztes Bild für ein neues Dokument.</translation>
    </message>
</context>
<context>
    <name>plyra::DocumentManager</name>
    <message>
        <source>Untitled</source>
        <translation>Unbenannt</translation>
    </message>
    <message>
        <source>Untitled %1</source>
        <translation>Unbenannt %1</translation>
    </message>
    <message>
        <source>The image &quot;%1&quot; could not be opened.</source>
        <translation>Das Bild „%1“ konnte nicht geöffnet werden.</translation>
    </message>
    <message>
        <source>It is not a Plyra document (a folder named *.plyra).</source>
        <translation>Es ist kein Plyra-Dokument (ein Ordner namens *.plyra).</translation>
    </message>
    <message>
        <source>There is no such document.</source>
        <translation>Dieses Dokument gibt es nicht.</translation>
    </message>
    <message>
        <source>The document is damaged.</source>
        <translation>Das Dokument ist beschädigt.</translation>
    </message>
    <message>
        <source>The document &quot;%1&quot; could not be opened.</source>
        <translation>Das Dokument „%1“ konnte nicht geöffnet werden.</translation>
    </message>
    <message>
        <source>The document &quot;%1&quot; could not be saved as &quot;%2&quot;.</source>
        <translation>Das Dokument „%1“ konnte nicht als „%2“ gespeichert werden.</translation>
    </message>
    <message>
        <source>A document of that name is open in another window.</source>
        <translation>Ein Dokument dieses Namens ist in einem anderen Fenster geöffnet.</translation>
    </message>
    <message>
        <source>A document cannot be saved inside its own package.</source>
        <translation>Ein Dokument kann nicht in seinem eigenen Paket gespeichert werden.</translation>
    </message>
</context>
<context>
    <name>plyra::DocumentRecovery</name>
    <message>
        <source>The unsaved changes to &quot;%1&quot; could not be recovered.</source>
        <translation>Die ungesicherten Änderungen an „%1“ konnten nicht wiederhergestellt werden.</translation>
    </message>
</context>
<context>
    <name>plyra::EditorZoom</name>
    <message>
        <source>Zoom %1 % | %2 %</source>
        <translation>Zoom %1 % | %2 %</translation>
    </message>
    <message>
        <source>Zoom %1 %</source>
        <translation>Zoom %1 %</translation>
    </message>
</context>
<context>
    <name>plyra::FaceLinesCommand</name>
    <message>
        <source>Finding the faces…</source>
        <translation>Gesichter werden gesucht …</translation>
    </message>
    <message>
        <source>The images changed while the faces were searched; no lines were added.</source>
        <translation>Die Bilder haben sich während der Suche nach den Gesichtern geändert; es wurden keine Linien hinzugefügt.</translation>
    </message>
    <message>
        <source>No face found in the first image.</source>
        <translation>Im ersten Bild wurde kein Gesicht gefunden.</translation>
    </message>
    <message>
        <source>No face found in the last image.</source>
        <translation>Im letzten Bild wurde kein Gesicht gefunden.</translation>
    </message>
    <message>
        <source>Added %1 face lines.</source>
        <translation>%1 Gesichtslinien hinzugefügt.</translation>
    </message>
    <message>
        <source>The faces could not be searched: %1</source>
        <translation>Die Gesichter konnten nicht gesucht werden: %1</translation>
    </message>
    <message>
        <source>The face lines are added when the current change ends.</source>
        <translation>Die Gesichtslinien werden hinzugefügt, sobald die laufende Änderung endet.</translation>
    </message>
</context>
<context>
    <name>plyra::HelpWindow</name>
    <message>
        <source>Plyra Help</source>
        <translation>Plyra-Hilfe</translation>
    </message>
    <message>
        <source>Help page</source>
        <translation>Hilfeseite</translation>
    </message>
    <message>
        <source>Navigation</source>
        <translation>Navigation</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Forward</source>
        <translation>Vor</translation>
    </message>
    <message>
        <source>Contents</source>
        <translation>Inhalt</translation>
    </message>
    <message>
        <source>Plyra Help: %1</source>
        <translation>Plyra-Hilfe: %1</translation>
    </message>
</context>
<context>
    <name>plyra::ImageChooser</name>
    <message>
        <source>Images (%1)</source>
        <translation>Bilder (%1)</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Choose First Image</source>
        <translation>Erstes Bild wählen</translation>
    </message>
    <message>
        <source>Choose Last Image</source>
        <translation>Letztes Bild wählen</translation>
    </message>
</context>
<context>
    <name>plyra::ImageProblemBar</name>
    <message>
        <source>Image problems</source>
        <translation>Probleme mit Bildern</translation>
    </message>
    <message>
        <source>it could not be read</source>
        <translation>es konnte nicht gelesen werden</translation>
    </message>
    <message>
        <source>The first image “%1” could not be shown: %2.</source>
        <translation>Das erste Bild „%1“ kann nicht angezeigt werden: %2.</translation>
    </message>
    <message>
        <source>The last image “%1” could not be shown: %2.</source>
        <translation>Das letzte Bild „%1“ kann nicht angezeigt werden: %2.</translation>
    </message>
    <message>
        <source>Plyra keeps the file in the document as it is.</source>
        <translation>Plyra behält die Datei unverändert im Dokument.</translation>
    </message>
</context>
<context>
    <name>plyra::LineColorWell</name>
    <message>
        <source>Line colour</source>
        <translation>Linienfarbe</translation>
    </message>
    <message>
        <source>The colour in which lines are drawn</source>
        <translation>Die Farbe, in der Linien gezeichnet werden</translation>
    </message>
</context>
<context>
    <name>plyra::MorphEditorWindowController</name>
    <message>
        <source>First image</source>
        <translation>Erstes Bild</translation>
    </message>
    <message>
        <source>Last image</source>
        <translation>Letztes Bild</translation>
    </message>
    <message>
        <source>%1[*] — Plyra</source>
        <translation>%1[*] — Plyra</translation>
    </message>
    <message>
        <source>Face lines are not available in this build.</source>
        <translation>Gesichtslinien sind in dieser Ausgabe nicht verfügbar.</translation>
    </message>
</context>
<context>
    <name>plyra::PlyraApplication</name>
    <message>
        <source>About Plyra</source>
        <translation>Über Plyra</translation>
    </message>
    <message>
        <source>&lt;h3&gt;Plyra %1&lt;/h3&gt;&lt;p&gt;Morphs one still image into another through pairs of corresponding lines.&lt;/p&gt;&lt;p&gt;Licensed under the MIT licence.&lt;/p&gt;</source>
        <translation>&lt;h3&gt;Plyra %1&lt;/h3&gt;&lt;p&gt;Verwandelt ein Standbild über Paare einander entsprechender Linien in ein anderes.&lt;/p&gt;&lt;p&gt;Lizenziert unter der MIT-Lizenz.&lt;/p&gt;</translation>
    </message>
</context>
</TS>
