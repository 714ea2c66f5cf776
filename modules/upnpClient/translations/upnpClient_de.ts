<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>CMUPnPWorker</name>
    <message>
        <source>Server not found</source>
        <translation>Server nicht gefunden</translation>
    </message>
    <message>
        <source>Invalid context menu request</source>
        <translation>Ungültige Anfrage nach einem Kontextmenü</translation>
    </message>
    <message>
        <source>UPnP Context Menu</source>
        <translation>UPnP-Kontextmenü</translation>
    </message>
    <message>
        <source>Failed to retrieve content</source>
        <translation>Inhalte konnten nicht abgerufen werden</translation>
    </message>
    <message>
        <source>Unknown UPnP item type</source>
        <translation>Unbekannte Art von UPnP-Objekt</translation>
    </message>
    <message>
        <source>Artist</source>
        <translation>Interpret</translation>
    </message>
    <message>
        <source>Album</source>
        <translation>Album</translation>
    </message>
    <message>
        <source>Title</source>
        <translation>Titel</translation>
    </message>
    <message>
        <source>Search menu</source>
        <translation>Suchmenü</translation>
    </message>
    <message>
        <source>Search results</source>
        <translation>Suchergebnisse</translation>
    </message>
</context>
</TS>
