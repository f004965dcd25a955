<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>plyra::EmptySelectionView</name>
    <message>
        <source>No Selection</source>
        <translation>Keine Auswahl</translation>
    </message>
</context>
<context>
    <name>plyra::InspectorPanel</name>
    <message>
        <source>Inspector</source>
        <translation>Inspektor</translation>
    </message>
</context>
<context>
    <name>plyra::LineTimingView</name>
    <message>
        <source>&amp;Start point:</source>
        <translation>&amp;Startpunkt:</translation>
    </message>
    <message>
        <source>&amp;End point:</source>
        <translation>&amp;Endpunkt:</translation>
    </message>
    <message>
        <source>&amp;Dissolve:</source>
        <translation>Überblen&amp;dung:</translation>
    </message>
    <message>
        <source>Begins moving</source>
        <translation>Bewegung beginnt</translation>
    </message>
    <message>
        <source>Stops moving</source>
        <translation>Bewegung endet</translation>
    </message>
    <message>
        <source>Starts</source>
        <translation>Beginnt</translation>
    </message>
    <message>
        <source>Ends</source>
        <translation>Endet</translation>
    </message>
    <message>
        <source>Start point begins moving</source>
        <translation>Bewegungsbeginn des Startpunkts</translation>
    </message>
    <message>
        <source>Start point stops moving</source>
        <translation>Bewegungsende des Startpunkts</translation>
    </message>
    <message>
        <source>End point begins moving</source>
        <translation>Bewegungsbeginn des Endpunkts</translation>
    </message>
    <message>
        <source>End point stops moving</source>
        <translation>Bewegungsende des Endpunkts</translation>
    </message>
    <message>
        <source>Dissolve starts</source>
        <translation>Beginn der Überblendung</translation>
    </message>
    <message>
        <source>Dissolve ends</source>
        <translation>Ende der Überblendung</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>Help on line timing</source>
        <translation>Hilfe zum Zeitverlauf der Linien</translation>
    </message>
    <message>
        <source>%1: a time from 0 (first image) to 1 (last image)</source>
        <translation>%1: ein Zeitpunkt von 0 (erstes Bild) bis 1 (letztes Bild)</translation>
    </message>
    <message>
        <source>Dissolving needs both a first and a last image.</source>
        <translation>Zum Überblenden werden ein erstes und ein letztes Bild benötigt.</translation>
    </message>
</context>
<context>
    <name>plyra::TimeField</name>
    <message>
        <source>Enter a time from 0 to 1.</source>
        <translation>Geben Sie einen Zeitpunkt von 0 bis 1 ein.</translation>
    </message>
</context>
<context>
    <name>plyra::TimingTimeline</name>
    <message>
        <source>Timing timeline</source>
        <translation>Zeitleiste</translation>
    </message>
    <message>
        <source>Start point</source>
        <translation>Startpunkt</translation>
    </message>
    <message>
        <source>End point</source>
        <translation>Endpunkt</translation>
    </message>
    <message>
        <source>Dissolve</source>
        <translation>Überblendung</translation>
    </message>
    <message>
        <source>Start point moves from %1 to %2, end point from %3 to %4, dissolve from %5 to %6.</source>
        <translation>Der Startpunkt bewegt sich von %1 bis %2, der Endpunkt von %3 bis %4, die Überblendung läuft von %5 bis %6.</translation>
    </message>
    <message>
        <source>Frame window at %1.</source>
        <translation>Einzelbildfenster bei %1.</translation>
    </message>
</context>
</TS>
