<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>Text</name>
    <message numerus="yes">
        <source>The list is incomplete: %Ln of %1 rows are missing. %2</source>
        <translation>
            <numerusform>The list is incomplete: %Ln of %1 rows are missing. %2</numerusform>
            <numerusform>The list is incomplete: %Ln of %1 rows are missing. %2</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The tree ends at level %1, with %Ln folders that were not opened. --depth shows more levels.</source>
        <translation>
            <numerusform>The tree ends at level %1, with a folder that was not opened. --depth shows more levels.</numerusform>
            <numerusform>The tree ends at level %1, with %Ln folders that were not opened. --depth shows more levels.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>There is nothing of this kind, but %Ln of others; --kind all takes them.</source>
        <translation>
            <numerusform>There is nothing of this kind, but %Ln of others; --kind all takes them.</numerusform>
            <numerusform>There is nothing of this kind, but %Ln of others; --kind all takes them.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The media server&apos;s search counts %Ln more tracks in %1 than it gives.</source>
        <translation>
            <numerusform>The media server&apos;s search counts %Ln more tracks in %1 than it gives.</numerusform>
            <numerusform>The media server&apos;s search counts %Ln more tracks in %1 than it gives.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>And %Ln more.</source>
        <translation>
            <numerusform>And %Ln more.</numerusform>
            <numerusform>And %Ln more.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>it holds %Ln values</source>
        <translation>
            <numerusform>it holds %Ln values</numerusform>
            <numerusform>it holds %Ln values</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln items, %1 in all.</source>
        <translation>
            <numerusform>%Ln item, %1 in all.</numerusform>
            <numerusform>%Ln items, %1 in all.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>None of %Ln rows is of this kind.</source>
        <translation>
            <numerusform>None of %Ln rows is of this kind.</numerusform>
            <numerusform>None of %Ln rows is of this kind.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>None of %Ln rows is in this range.</source>
        <translation>
            <numerusform>None of %Ln rows is in this range.</numerusform>
            <numerusform>None of %Ln rows is in this range.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln rows.</source>
        <translation>
            <numerusform>%Ln rows.</numerusform>
            <numerusform>%Ln rows.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1 of %Ln rows.</source>
        <translation>
            <numerusform>%1 of %Ln rows.</numerusform>
            <numerusform>%1 of %Ln rows.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln folders</source>
        <translation>
            <numerusform>%Ln folders</numerusform>
            <numerusform>%Ln folders</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln others</source>
        <translation>
            <numerusform>%Ln others</numerusform>
            <numerusform>%Ln others</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln more</source>
        <translation>
            <numerusform>%Ln more</numerusform>
            <numerusform>%Ln more</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The media server gives no address for %Ln of what is in %1, so nobody can play it: %2.</source>
        <translation>
            <numerusform>The media server gives no address for %Ln of what is in %1, so nobody can play it: %2.</numerusform>
            <numerusform>The media server gives no address for %Ln of what is in %1, so nobody can play it: %2.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The media server counts %Ln more rows in %1 than it gives.</source>
        <translation>
            <numerusform>The media server counts %Ln more rows in %1 than it gives.</numerusform>
            <numerusform>The media server counts %Ln more rows in %1 than it gives.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln tracks</source>
        <translation>
            <numerusform>%Ln tracks</numerusform>
            <numerusform>%Ln tracks</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The title %1 is there %Ln times. Name the one you mean:
  %2</source>
        <translation>
            <numerusform>The title %1 is there %Ln times. Name the one you mean:
  %2</numerusform>
            <numerusform>The title %1 is there %Ln times. Name the one you mean:
  %2</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The media server counts %Ln more entries than it gives.</source>
        <translation>
            <numerusform>The media server counts %Ln more entries than it gives.</numerusform>
            <numerusform>The media server counts %Ln more entries than it gives.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln more rows are counted in %1 than its server gives.</source>
        <translation>
            <numerusform>%Ln more rows are counted in %1 than its server gives.</numerusform>
            <numerusform>%Ln more rows are counted in %1 than its server gives.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln seconds</source>
        <comment>within</comment>
        <translation>
            <numerusform>a second</numerusform>
            <numerusform>%Ln seconds</numerusform>
        </translation>
    </message>
</context>
</TS>
