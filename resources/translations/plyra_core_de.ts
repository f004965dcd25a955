<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>AnimatedGifWriter</name>
    <message>
        <source>Could not write &quot;%1&quot;: %2</source>
        <translation>„%1“ konnte nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>Could not move the finished GIF to &quot;%1&quot;: %2</source>
        <translation>Das fertige GIF konnte nicht nach „%1“ gebracht werden: %2</translation>
    </message>
</context>
<context>
    <name>AnimatedWebpWriter</name>
    <message>
        <source>libwebp does not match the version it was built for</source>
        <translation>libwebp passt nicht zu der Version, für die Plyra gebaut wurde</translation>
    </message>
    <message>
        <source>Could not compress a WebP frame: %1</source>
        <translation>Ein WebP-Bild konnte nicht komprimiert werden: %1</translation>
    </message>
    <message>
        <source>Frame %1 is missing</source>
        <translation>Bild %1 fehlt</translation>
    </message>
    <message>
        <source>Frame %1 is %2 x %3 pixels, not %4 x %5</source>
        <translation>Bild %1 hat %2 × %3 Pixel statt %4 × %5</translation>
    </message>
    <message>
        <source>Could not finish the WebP animation: %1</source>
        <translation>Die WebP-Animation konnte nicht abgeschlossen werden: %1</translation>
    </message>
    <message>
        <source>Could not write &quot;%1&quot;: an animated WebP needs frames of 1 to %2 pixels a side</source>
        <translation>„%1“ konnte nicht geschrieben werden: ein animiertes WebP braucht Bilder mit 1 bis %2 Pixeln je Seite</translation>
    </message>
    <message>
        <source>Out of memory while setting up the WebP encoder</source>
        <translation>Der Speicher reicht nicht, um den WebP-Encoder einzurichten</translation>
    </message>
    <message>
        <source>Could not assemble the WebP file: %1</source>
        <translation>Die WebP-Datei konnte nicht zusammengesetzt werden: %1</translation>
    </message>
    <message>
        <source>Could not write &quot;%1&quot;: %2</source>
        <translation>„%1“ konnte nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>Could not move the finished WebP to &quot;%1&quot;: %2</source>
        <translation>Das fertige WebP konnte nicht nach „%1“ verschoben werden: %2</translation>
    </message>
</context>
<context>
    <name>DisplayImage</name>
    <message>
        <source>reading the image was interrupted</source>
        <translation>das Lesen des Bildes wurde abgebrochen</translation>
    </message>
    <message>
        <source>the PDF file is too large (%1 MB; PDF files may have at most %2 MB)</source>
        <translation>die PDF-Datei ist zu groß (%1 MB; PDF-Dateien dürfen höchstens %2 MB haben)</translation>
    </message>
    <message>
        <source>it is not an image in a format Plyra can read</source>
        <translation>sie ist kein Bild in einem Format, das Plyra lesen kann</translation>
    </message>
    <message>
        <source>the file cannot be read</source>
        <translation>die Datei kann nicht gelesen werden</translation>
    </message>
    <message>
        <source>there is not enough memory to read the image</source>
        <translation>der Speicher reicht nicht, um das Bild zu lesen</translation>
    </message>
</context>
<context>
    <name>DocumentPackage</name>
    <message>
        <source>Could not save “%1”: %2</source>
        <translation>„%1“ konnte nicht gespeichert werden: %2</translation>
    </message>
    <message>
        <source>Could not save the image “%1”: %2</source>
        <translation>Das Bild „%1“ konnte nicht gespeichert werden: %2</translation>
    </message>
    <message>
        <source>The document “%1” could not be read: %2.</source>
        <translation>Das Dokument „%1“ konnte nicht gelesen werden: %2.</translation>
    </message>
    <message>
        <source>The document “%1” could not be read: “%2” does not hold a dictionary.</source>
        <translation>Das Dokument „%1“ konnte nicht gelesen werden: „%2“ enthält kein Wörterbuch.</translation>
    </message>
    <message>
        <source>Could not keep the image “%1” in the saved package: %2</source>
        <translation>Das Bild „%1“ konnte nicht im gespeicherten Paket behalten werden: %2</translation>
    </message>
    <message>
        <source>Could not carry “%1” over into the saved package: %2</source>
        <translation>„%1“ konnte nicht in das gespeicherte Paket übernommen werden: %2</translation>
    </message>
</context>
<context>
    <name>FileKind</name>
    <message>
        <source>a regular file</source>
        <translation>eine reguläre Datei</translation>
    </message>
    <message>
        <source>a folder</source>
        <translation>ein Ordner</translation>
    </message>
    <message>
        <source>a FIFO (named pipe)</source>
        <translation>ein FIFO (benannte Pipe)</translation>
    </message>
    <message>
        <source>a character device</source>
        <translation>ein zeichenorientiertes Gerät</translation>
    </message>
    <message>
        <source>a block device</source>
        <translation>ein blockorientiertes Gerät</translation>
    </message>
    <message>
        <source>a socket</source>
        <translation>ein Socket</translation>
    </message>
    <message>
        <source>a symbolic link</source>
        <translation>eine symbolische Verknüpfung</translation>
    </message>
    <message>
        <source>not a regular file</source>
        <translation>keine reguläre Datei</translation>
    </message>
</context>
<context>
    <name>FrameOutput</name>
    <message>
        <source>no frame has been rendered</source>
        <translation>es wurde kein Bild berechnet</translation>
    </message>
    <message>
        <source>a frame is saved as .jpg, .jpeg, .png, .tif or .tiff</source>
        <translation>ein Einzelbild wird als .jpg, .jpeg, .png, .tif oder .tiff gespeichert</translation>
    </message>
    <message>
        <source>there is no frame to write</source>
        <translation>es gibt kein Bild zum Schreiben</translation>
    </message>
</context>
<context>
    <name>FrameSpool</name>
    <message>
        <source>cannot make a file to keep frames in &apos;%1&apos;: %2</source>
        <translation>in „%1“ kann keine Datei zum Aufbewahren der Bilder angelegt werden: %2</translation>
    </message>
    <message>
        <source>cannot keep a frame aside: %1</source>
        <translation>ein Bild kann nicht beiseitegelegt werden: %1</translation>
    </message>
    <message>
        <source>frame %1 was not kept</source>
        <translation>Bild %1 wurde nicht aufbewahrt</translation>
    </message>
    <message>
        <source>cannot read a frame back: %1</source>
        <translation>ein Bild kann nicht zurückgelesen werden: %1</translation>
    </message>
</context>
<context>
    <name>ImageLimits</name>
    <message>
        <source>%1 × %2 pixels, more than the %3 million (such as 16384 × 16384) that are read</source>
        <translation>%1 × %2 Pixel, mehr als die %3 Millionen (etwa 16384 × 16384), die gelesen werden</translation>
    </message>
    <message>
        <source>the image is too large: %1</source>
        <translation>das Bild ist zu groß: %1</translation>
    </message>
    <message>
        <source>the first page of the PDF document is too large: at 72 dpi it has %1</source>
        <translation>die erste Seite des PDF-Dokuments ist zu groß: bei 72 dpi hat sie %1</translation>
    </message>
</context>
<context>
    <name>ImageSequenceWriter</name>
    <message>
        <source>there is not enough memory for it</source>
        <translation>der Speicher reicht dafür nicht</translation>
    </message>
    <message>
        <source>cannot write &apos;%1&apos;: %2</source>
        <translation>„%1“ kann nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>the frame could not be rendered</source>
        <translation>das Bild konnte nicht berechnet werden</translation>
    </message>
    <message>
        <source>frame %1 was not rendered</source>
        <translation>Bild %1 wurde nicht berechnet</translation>
    </message>
    <message>
        <source>cannot move the frame into place at &apos;%1&apos;: %2</source>
        <translation>das Bild kann nicht nach „%1“ verschoben werden: %2</translation>
    </message>
</context>
<context>
    <name>Movie</name>
    <message>
        <source>Could not make a temporary file in &quot;%1&quot;: %2</source>
        <translation>In „%1“ konnte keine temporäre Datei angelegt werden: %2</translation>
    </message>
</context>
<context>
    <name>MovieEncoder</name>
    <message>
        <source>The codec &quot;%1&quot; cannot compress frames of %2 x %3 pixels: %4</source>
        <translation>Der Codec „%1“ kann keine Bilder von %2 × %3 Pixeln komprimieren: %4</translation>
    </message>
    <message>
        <source>No encoder here writes the codec &quot;%1&quot; into a QuickTime movie</source>
        <translation>Kein Encoder auf diesem System schreibt den Codec „%1“ in einen QuickTime-Film</translation>
    </message>
    <message>
        <source>A frame of %1 x %2 pixels cannot be compressed</source>
        <translation>Ein Bild von %1 × %2 Pixeln kann nicht komprimiert werden</translation>
    </message>
</context>
<context>
    <name>MovieFileReader</name>
    <message>
        <source>Could not read the movie &quot;%1&quot;: %2</source>
        <translation>Der Film „%1“ konnte nicht gelesen werden: %2</translation>
    </message>
</context>
<context>
    <name>MovieFileWriter</name>
    <message>
        <source>Could not write &quot;%1&quot;: the movie has no frames</source>
        <translation>„%1“ konnte nicht geschrieben werden: der Film hat keine Bilder</translation>
    </message>
    <message>
        <source>Could not set up the movie file &quot;%1&quot;: %2</source>
        <translation>Die Filmdatei „%1“ konnte nicht eingerichtet werden: %2</translation>
    </message>
    <message>
        <source>Could not create &quot;%1&quot;: %2</source>
        <translation>„%1“ konnte nicht angelegt werden: %2</translation>
    </message>
    <message>
        <source>Could not start writing &quot;%1&quot;: %2</source>
        <translation>Das Schreiben von „%1“ konnte nicht beginnen: %2</translation>
    </message>
    <message>
        <source>Could not write a frame to &quot;%1&quot;: %2</source>
        <translation>Ein Bild konnte nicht in „%1“ geschrieben werden: %2</translation>
    </message>
    <message>
        <source>Could not finish &quot;%1&quot;: %2</source>
        <translation>„%1“ konnte nicht fertiggestellt werden: %2</translation>
    </message>
    <message>
        <source>Could not close &quot;%1&quot;: %2</source>
        <translation>„%1“ konnte nicht geschlossen werden: %2</translation>
    </message>
    <message>
        <source>Could not move the finished movie to &quot;%1&quot;: %2</source>
        <translation>Der fertige Film konnte nicht nach „%1“ gebracht werden: %2</translation>
    </message>
</context>
<context>
    <name>MovieFrameExport</name>
    <message>
        <source>the movie has no frames</source>
        <translation>der Film hat keine Bilder</translation>
    </message>
</context>
<context>
    <name>MovieOutput</name>
    <message>
        <source>a numbered image sequence needs one %1 or %2 (N from 1 to 9) in its file name and the extension .png, .jpg, .jpeg, .tif or .tiff: &apos;%3&apos;</source>
        <extracomment>%1 and %2 are the placeholders &quot;%d&quot; and &quot;%0Nd&quot; written as they are, %3 the file name.</extracomment>
        <translation>eine nummerierte Bildfolge braucht ein %1 oder %2 (N von 1 bis 9) im Dateinamen und die Endung .png, .jpg, .jpeg, .tif oder .tiff: „%3“</translation>
    </message>
    <message>
        <source>a movie is saved as .mov, .mp4, .webm, .gif, .webp or a numbered image sequence such as %1: &apos;%2&apos;</source>
        <extracomment>%1 is an example file name, NAME_%04d.png, %2 the file name given.</extracomment>
        <translation>ein Film wird als .mov, .mp4, .webm, .gif, .webp oder als nummerierte Bildfolge wie %1 gespeichert: „%2“</translation>
    </message>
</context>
<context>
    <name>MovieOutputFile</name>
    <message>
        <source>Could not write &quot;%1&quot;: %2</source>
        <translation>„%1“ konnte nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>Could not write beside &quot;%1&quot;: %2</source>
        <translation>Neben „%1“ konnte nicht geschrieben werden: %2</translation>
    </message>
</context>
<context>
    <name>MovieRenderController</name>
    <message>
        <source>no encoder here can write the codec &apos;%1&apos; into a QuickTime movie; the codecs that always work are %2</source>
        <translation>kein Encoder hier kann den Codec „%1“ in einen QuickTime-Film schreiben; immer möglich sind %2</translation>
    </message>
    <message>
        <source>the document has no image to render</source>
        <translation>das Dokument hat kein Bild zum Berechnen</translation>
    </message>
    <message>
        <source>cannot make the temporary movie: %1</source>
        <translation>der vorläufige Film kann nicht angelegt werden: %1</translation>
    </message>
    <message>
        <source>no movie has been rendered</source>
        <translation>es wurde kein Film berechnet</translation>
    </message>
    <message>
        <source>only %1 of %2 frames could be compressed</source>
        <translation>nur %1 von %2 Bildern konnten komprimiert werden</translation>
    </message>
    <message>
        <source>the movie is not complete</source>
        <translation>der Film ist nicht vollständig</translation>
    </message>
    <message>
        <source>the file names of the image sequence are not known</source>
        <translation>die Dateinamen der Bildfolge sind nicht bekannt</translation>
    </message>
    <message>
        <source>cannot write &apos;%1&apos;: %2</source>
        <translation>„%1“ kann nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>the frames were rendered as a movie, not as an image sequence</source>
        <translation>die Bilder wurden als Film berechnet, nicht als Bildfolge</translation>
    </message>
    <message>
        <source>the frames were rendered for the names &apos;%1&apos;</source>
        <translation>die Bilder wurden für die Namen „%1“ berechnet</translation>
    </message>
    <message>
        <source>the image sequence is not complete</source>
        <translation>die Bildfolge ist nicht vollständig</translation>
    </message>
    <message>
        <source>the movie was compressed with &apos;%1&apos;, which a .%2 file does not hold</source>
        <translation>der Film wurde mit „%1“ komprimiert, das eine .%2-Datei nicht aufnehmen kann</translation>
    </message>
</context>
<context>
    <name>MovieSampleStore</name>
    <message>
        <source>Could not create the movie storage &quot;%1&quot;: %2</source>
        <translation>Der Filmspeicher „%1“ konnte nicht angelegt werden: %2</translation>
    </message>
    <message>
        <source>Could not open &quot;%1&quot;: %2</source>
        <translation>„%1“ konnte nicht geöffnet werden: %2</translation>
    </message>
    <message>
        <source>Could not write to the movie storage &quot;%1&quot;: %2</source>
        <translation>In den Filmspeicher „%1“ konnte nicht geschrieben werden: %2</translation>
    </message>
</context>
<context>
    <name>OutputPathGuard</name>
    <message>
        <source>the folder &apos;%1&apos; does not exist</source>
        <translation>den Ordner „%1“ gibt es nicht</translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos; cannot be used: %2</source>
        <translation>der Ordner „%1“ kann nicht verwendet werden: %2</translation>
    </message>
    <message>
        <source>it is a symbolic link that leads nowhere</source>
        <translation>es ist eine symbolische Verknüpfung, die ins Leere führt</translation>
    </message>
    <message>
        <source>it is a symbolic link to &apos;%1&apos;, which is %2, not a regular file</source>
        <translation>es ist eine symbolische Verknüpfung auf „%1“, und das ist %2, keine reguläre Datei</translation>
    </message>
    <message>
        <source>it is a folder</source>
        <translation>es ist ein Ordner</translation>
    </message>
    <message>
        <source>it is %1, not a regular file</source>
        <translation>es ist %1, keine reguläre Datei</translation>
    </message>
    <message>
        <source>it lies inside &apos;%1&apos;, the document being read</source>
        <translation>es liegt in „%1“, dem Dokument, das gelesen wird</translation>
    </message>
    <message>
        <source>it is &apos;%1&apos;, a file the document reads</source>
        <translation>es ist „%1“, eine Datei, die das Dokument liest</translation>
    </message>
    <message>
        <source>no file name was given</source>
        <translation>es wurde kein Dateiname angegeben</translation>
    </message>
    <message>
        <source>it names a folder, not a file</source>
        <translation>der Name bezeichnet einen Ordner, keine Datei</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not a folder</source>
        <translation>„%1“ ist kein Ordner</translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos; is not writable (%2)</source>
        <translation>in den Ordner „%1“ kann nicht geschrieben werden (%2)</translation>
    </message>
</context>
<context>
    <name>PdfImage</name>
    <message>
        <source>The PDF data could not be read.</source>
        <translation>Die PDF-Daten konnten nicht gelesen werden.</translation>
    </message>
    <message>
        <source>The PDF document is protected by a password.</source>
        <translation>Das PDF-Dokument ist durch ein Kennwort geschützt.</translation>
    </message>
    <message>
        <source>The PDF document has no pages.</source>
        <translation>Das PDF-Dokument hat keine Seiten.</translation>
    </message>
    <message>
        <source>The first page of the PDF document could not be read.</source>
        <translation>Die erste Seite des PDF-Dokuments konnte nicht gelesen werden.</translation>
    </message>
    <message>
        <source>The first page of the PDF document has no size.</source>
        <translation>Die erste Seite des PDF-Dokuments hat keine Größe.</translation>
    </message>
    <message>
        <source>The first page of the PDF document could not be drawn.</source>
        <translation>Die erste Seite des PDF-Dokuments konnte nicht gezeichnet werden.</translation>
    </message>
</context>
<context>
    <name>PngEncoder</name>
    <message>
        <source>cannot encode the PNG image (%1): %2</source>
        <translation>das PNG-Bild kann nicht kodiert werden (%1): %2</translation>
    </message>
    <message>
        <source>there is no picture to encode</source>
        <translation>es gibt kein Bild zum Kodieren</translation>
    </message>
    <message>
        <source>setting up</source>
        <translation>beim Einrichten</translation>
    </message>
    <message>
        <source>starting</source>
        <translation>beim Beginnen</translation>
    </message>
    <message>
        <source>compressing</source>
        <translation>beim Komprimieren</translation>
    </message>
    <message>
        <source>finishing</source>
        <translation>beim Abschließen</translation>
    </message>
</context>
<context>
    <name>RegularFile</name>
    <message>
        <source>no such file</source>
        <translation>die Datei gibt es nicht</translation>
    </message>
    <message>
        <source>it is a folder, not a file</source>
        <translation>es ist ein Ordner, keine Datei</translation>
    </message>
    <message>
        <source>it is %1, not a regular file</source>
        <translation>es ist %1, keine reguläre Datei</translation>
    </message>
    <message>
        <source>the file is empty</source>
        <translation>die Datei ist leer</translation>
    </message>
    <message>
        <source>the file is too large (%1; files of this kind may have at most %2)</source>
        <translation>die Datei ist zu groß (%1; Dateien dieser Art dürfen höchstens %2 haben)</translation>
    </message>
    <message>
        <source>%1 bytes</source>
        <translation>%1 Byte</translation>
    </message>
    <message>
        <source>reading was interrupted</source>
        <translation>das Lesen wurde abgebrochen</translation>
    </message>
    <message>
        <source>the file is too large (files of this kind may have at most %1)</source>
        <translation>die Datei ist zu groß (Dateien dieser Art dürfen höchstens %1 haben)</translation>
    </message>
    <message>
        <source>there is not enough memory to read it</source>
        <translation>der Speicher reicht nicht, um sie zu lesen</translation>
    </message>
    <message>
        <source>%1.%2 GB</source>
        <translation>%1,%2 GB</translation>
    </message>
</context>
<context>
    <name>StagedDirectory</name>
    <message>
        <source>Could not create a folder beside “%1”: %2</source>
        <translation>Neben „%1“ konnte kein Ordner angelegt werden: %2</translation>
    </message>
    <message>
        <source>Could not save “%1”: it is not a folder or a regular file, and is left as it is.</source>
        <translation>„%1“ konnte nicht gespeichert werden: es ist weder ein Ordner noch eine reguläre Datei und bleibt, wie es ist.</translation>
    </message>
    <message>
        <source>Could not move “%1” aside to replace it: %2</source>
        <translation>„%1“ konnte nicht zum Ersetzen beiseitegelegt werden: %2</translation>
    </message>
    <message>
        <source>Could not move the new “%1” into place: %2</source>
        <translation>Das neue „%1“ konnte nicht an seinen Platz gebracht werden: %2</translation>
    </message>
    <message>
        <source>Could not write “%1” to the disk: %2</source>
        <translation>„%1“ konnte nicht auf die Festplatte geschrieben werden: %2</translation>
    </message>
</context>
<context>
    <name>TiffEncoder</name>
    <message>
        <source>cannot encode the TIFF image: %1</source>
        <translation>das TIFF-Bild kann nicht kodiert werden: %1</translation>
    </message>
    <message>
        <source>there is no picture to encode</source>
        <translation>es gibt kein Bild zum Kodieren</translation>
    </message>
</context>
<context>
    <name>TiffIo</name>
    <message>
        <source>There is no image to write to “%1”.</source>
        <translation>Es gibt kein Bild, das nach „%1“ geschrieben werden kann.</translation>
    </message>
    <message>
        <source>The image for “%1” could not be converted to RGB.</source>
        <translation>Das Bild für „%1“ konnte nicht in RGB umgewandelt werden.</translation>
    </message>
    <message>
        <source>Could not create the TIFF file “%1”.</source>
        <translation>Die TIFF-Datei „%1“ konnte nicht angelegt werden.</translation>
    </message>
    <message>
        <source>Could not write the TIFF file “%1”.</source>
        <translation>Die TIFF-Datei „%1“ konnte nicht geschrieben werden.</translation>
    </message>
    <message>
        <source>Could not read “%1”: %2</source>
        <translation>„%1“ konnte nicht gelesen werden: %2</translation>
    </message>
    <message>
        <source>“%1” is not a readable TIFF file.</source>
        <translation>„%1“ ist keine lesbare TIFF-Datei.</translation>
    </message>
    <message>
        <source>“%1” has no image size.</source>
        <translation>„%1“ hat keine Bildgröße.</translation>
    </message>
    <message>
        <source>reading the image was interrupted</source>
        <translation>das Lesen des Bildes wurde abgebrochen</translation>
    </message>
    <message>
        <source>The pixels of “%1” could not be read.</source>
        <translation>Die Pixel von „%1“ konnten nicht gelesen werden.</translation>
    </message>
</context>
<context>
    <name>TrackImage</name>
    <message>
        <source>there is not enough memory to prepare the image for rendering</source>
        <translation>der Speicher reicht nicht, um das Bild für die Berechnung vorzubereiten</translation>
    </message>
    <message>
        <source>reading the image was interrupted</source>
        <translation>das Lesen des Bildes wurde abgebrochen</translation>
    </message>
</context>
<context>
    <name>UndoAction</name>
    <message>
        <source>Change Movie Settings</source>
        <translation>Filmeinstellungen ändern</translation>
    </message>
</context>
</TS>
