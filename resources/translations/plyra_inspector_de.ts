<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>plyra::EmptySelectionView</name>
    <message>
        <location filename="../../src/inspector/empty_selection_view.cpp" line="27"/>
        <location filename="../../src/inspector/empty_selection_view.cpp" line="28"/>
        <source>No Selection</source>
        <translation>Keine Auswahl</translation>
    </message>
</context>
<context>
    <name>plyra::InspectorPanel</name>
    <message>
        <location filename="../../src/inspector/inspector_panel.cpp" line="61"/>
        <location filename="../../src/inspector/inspector_panel.cpp" line="62"/>
        <source>Inspector</source>
        <translation>Inspektor</translation>
    </message>
</context>
<context>
    <name>plyra::LineTimingView</name>
    <message>
        <location filename="../../src/inspector/line_timing_view.cpp" line="105"/>
        <source>&amp;Start point:</source>
        <translation>&amp;Startpunkt:</translation>
    </message>
    <message>
        <location filename="../../src/inspector/line_timing_view.cpp" line="106"/>
        <source>&amp;End point:</source>
        <translation>&amp;Endpunkt:</translation>
    </message>
    <message>
        <location filename="../../src/inspector/line_timing_view.cpp" line="107"/>
        <source>&amp;Dissolve:</source>
        <translation>Überblen&amp;dung:</translation>
    </message>
    <message>
        <location filename="../../src/inspector/line_timing_view.cpp" line="108"/>
        <source>Begins moving</source>
        <translation>Bewegung beginnt</translation>
    </message>
    <message>
        <location filename="../../src/inspector/line_timing_view.cpp" line="109"/>
        <source>Stops moving</source>
        <translation>Bewegung endet</translation>
    </message>
    <message>
        <location filename="../../src/inspector/line_timing_view.cpp" line="110"/>
        <source>Starts</source>
        <translation>Beginnt</translation>
    </message>
    <message>
        <location filename="../../src/inspector/line_timing_view.cpp" line="111"/>
        <source>Ends</source>
        <translation>Endet</translation>
    </message>
    <message>
        <location filename="../../src/inspector/line_timing_view.cpp" line="114"/>
        <source>Start point begins moving</source>
        <translation>Bewegungsbeginn des Startpunkts</translation>
    </message>
    <message>
        <location filename="../../src/inspector/line_timing_view.cpp" line="114"/>
        <source>Start point stops moving</source>
        <translation>Bewegungsende des Startpunkts</translation>
    </message>
    <message>
        <location filename="../../src/inspector/line_timing_view.cpp" line="115"/>
        <source>End point begins moving</source>
        <translation>Bewegungsbeginn des Endpunkts</translation>
    </message>
    <message>
        <location filename="../../src/inspector/line_timing_view.cpp" line="115"/>
        <source>End point stops moving</source>
        <translation>Bewegungsende des Endpunkts</translation>
    </message>
    <message>
        <location filename="../../src/inspector/line_timing_view.cpp" line="116"/>
        <source>Dissolve starts</source>
        <translation>Beginn der Überblendung</translation>
    </message>
    <message>
        <location filename="../../src/inspector/line_timing_view.cpp" line="116"/>
        <source>Dissolve ends</source>
        <translation>Ende der Überblendung</translation>
    </message>
    <message>
        <location filename="../../src/inspector/line_timing_view.cpp" line="121"/>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <location filename="../../src/inspector/line_timing_view.cpp" line="122"/>
        <location filename="../../src/inspector/line_timing_view.cpp" line="123"/>
        <source>Help on line timing</source>
        <translation>Hilfe zum Zeitverlauf der Linien</translation>
    </message>
    <message>
        <location filename="../../src/inspector/line_timing_view.cpp" line="130"/>
        <source>%1: a time from 0 (first image) to 1 (last image)</source>
        <translation>%1: ein Zeitpunkt von 0 (erstes Bild) bis 1 (letztes Bild)</translation>
    </message>
    <message>
        <location filename="../../src/inspector/line_timing_view.cpp" line="132"/>
        <source>Dissolving needs both a first and a last image.</source>
        <translation>Zum Überblenden werden ein erstes und ein letztes Bild benötigt.</translation>
    </message>
</context>
<context>
    <name>plyra::TimeField</name>
    <message>
        <location filename="../../src/inspector/time_field.cpp" line="85"/>
        <source>Enter a time from 0 to 1.</source>
        <translation>Geben Sie einen Zeitpunkt von 0 bis 1 ein.</translation>
    </message>
</context>
<context>
    <name>plyra::TimingTimeline</name>
    <message>
        <location filename="../../src/inspector/timing_timeline.cpp" line="61"/>
        <location filename="../../src/inspector/timing_timeline.cpp" line="304"/>
        <source>Timing timeline</source>
        <translation>Zeitleiste</translation>
    </message>
    <message>
        <location filename="../../src/inspector/timing_timeline.cpp" line="143"/>
        <source>Start point</source>
        <translation>Startpunkt</translation>
    </message>
    <message>
        <location filename="../../src/inspector/timing_timeline.cpp" line="145"/>
        <source>End point</source>
        <translation>Endpunkt</translation>
    </message>
    <message>
        <location filename="../../src/inspector/timing_timeline.cpp" line="147"/>
        <source>Dissolve</source>
        <translation>Überblendung</translation>
    </message>
    <message>
        <location filename="../../src/inspector/timing_timeline.cpp" line="314"/>
        <source>Start point moves from %1 to %2, end point from %3 to %4, dissolve from %5 to %6.</source>
        <translation>Der Startpunkt bewegt sich von %1 bis %2, der Endpunkt von %3 bis %4, die Überblendung läuft von %5 bis %6.</translation>
    </message>
    <message>
        <location filename="../../src/inspector/timing_timeline.cpp" line="319"/>
        <source>Frame window at %1.</source>
        <translation>Einzelbildfenster bei %1.</translation>
    </message>
</context>
</TS>
