<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>CMError</name>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
</context>
<context>
    <name>CMNodesWorker</name>
    <message>
        <source>There is nothing to list at this place.</source>
        <translation>An dieser Stelle gibt es nichts aufzulisten.</translation>
    </message>
    <message>
        <source>There is nothing at this place.</source>
        <translation>An dieser Stelle ist nichts.</translation>
    </message>
    <message>
        <source>Nothing can be set at this place.</source>
        <translation>An dieser Stelle lässt sich nichts setzen.</translation>
    </message>
</context>
<context>
    <name>PlayListHelper</name>
    <message>
        <source>Play now</source>
        <translation>Jetzt abspielen</translation>
    </message>
    <message>
        <source>Play next</source>
        <translation>Als Nächstes abspielen</translation>
    </message>
    <message>
        <source>Add to queue</source>
        <translation>An die Warteschlange anhängen</translation>
    </message>
</context>
<context>
    <name>Text</name>
    <message numerus="yes">
        <source>The list is incomplete: %Ln of %1 rows are missing. %2</source>
        <translation>
            <numerusform>Die Liste ist unvollständig: Es fehlt %Ln von %1 Zeilen. %2</numerusform>
            <numerusform>Die Liste ist unvollständig: Es fehlen %Ln von %1 Zeilen. %2</numerusform>
        </translation>
    </message>
    <message>
        <source>The list is incomplete. %1</source>
        <translation>Die Liste ist unvollständig. %1</translation>
    </message>
    <message>
        <source>The media server counts them and doesn&apos;t give them.</source>
        <translation>Der Medienserver zählt sie mit, liefert sie aber nicht.</translation>
    </message>
    <message>
        <source>The children of a media server or folder; the servers
where none is named</source>
        <translation>Was in einem Medienserver oder Ordner steht; ohne Angabe
die Medienserver</translation>
    </message>
    <message>
        <source>First and last row, counted from 0 (all)</source>
        <translation>Erste und letzte Zeile, ab 0 gezählt (alle)</translation>
    </message>
    <message>
        <source>Read all, then sort by this; titles as your language
does, what has no date or length last. --rows are those
of the sorted list</source>
        <translation>Alles lesen, dann danach sortieren: Titel wie in Ihrer
Sprache, ohne Datum oder Länge zuletzt. --rows meint die
Zeilen der sortierten Liste</translation>
    </message>
    <message>
        <source>Only these; more than one with commas</source>
        <translation>Nur diese; mehrere durch Kommas getrennt</translation>
    </message>
    <message>
        <source>Genre, date, format, bit rate and path of each, too</source>
        <translation>Auch Genre, Datum, Format, Bitrate und Pfad</translation>
    </message>
    <message>
        <source>A tree of what is below</source>
        <translation>Alles darunter als Baum</translation>
    </message>
    <message>
        <source>How many levels of it (3)</source>
        <translation>Wie viele Ebenen davon (3)</translation>
    </message>
    <message>
        <source>A tree shows everything as the server orders it. Leave --sort, --kind, --rows and --long out, or -R.</source>
        <translation>Ein Baum zeigt alles in der Reihenfolge des Servers. Lassen Sie --sort, --kind, --rows und --long weg oder -R.</translation>
    </message>
    <message numerus="yes">
        <source>The tree ends at level %1, with %Ln folders that were not opened. --depth shows more levels.</source>
        <translation>
            <numerusform>Der Baum endet auf Ebene %1 mit einem Ordner, der nicht geöffnet wurde. --depth zeigt weitere Ebenen.</numerusform>
            <numerusform>Der Baum endet auf Ebene %1 mit %Ln Ordnern, die nicht geöffnet wurden. --depth zeigt weitere Ebenen.</numerusform>
        </translation>
    </message>
    <message>
        <source>The tree is incomplete:
  %1</source>
        <translation>Der Baum ist unvollständig:
  %1</translation>
    </message>
    <message>
        <source>Everything that is known about one node</source>
        <translation>Alles, was über einen Knoten bekannt ist</translation>
    </message>
    <message>
        <source>The search menu of a node, or its context menu</source>
        <translation>Das Suchmenü eines Knotens oder sein Kontextmenü</translation>
    </message>
    <message>
        <source>What can be done with the node: play, queue</source>
        <translation>Was sich mit dem Knoten tun lässt: abspielen, einreihen</translation>
    </message>
    <message>
        <source>Rows spread over a big folder</source>
        <translation>Über einen großen Ordner verteilte Zeilen</translation>
    </message>
    <message>
        <source>START,END,STEP: first position, last position
(inclusive), distance of at least 1</source>
        <translation>START,ENDE,ABSTAND: erste Stelle, letzte Stelle
(einschließlich), Abstand von mindestens 1</translation>
    </message>
    <message>
        <source>Rows of the sample, counted from 0; at most B+1 rows are
answered</source>
        <translation>Zeilen der Stichprobe, ab 0 gezählt; geliefert werden
höchstens B+1 Zeilen</translation>
    </message>
    <message>
        <source>Commands</source>
        <translation>Befehle</translation>
    </message>
    <message>
        <source>Example:
  %1

&quot;orka --help&quot; lists the options that every command has.</source>
        <translation>Beispiel:
  %1

&quot;orka --help&quot; nennt die Optionen, die jeder Befehl hat.</translation>
    </message>
    <message>
        <source>A node path (upnp:/uuid:…/64) or titles joined by /
(&quot;My NAS/Music&quot;; \/ for a slash in a title; / alone is
the list of media servers)</source>
        <translation>Ein Knotenpfad (upnp:/uuid:…/64) oder Titel, verbunden
durch / (&quot;Mein NAS/Musik&quot;; \/ für einen Schrägstrich im
Titel; / allein ist die Liste der Medienserver)</translation>
    </message>
    <message>
        <source>Node paths (upnp:/uuid:…/64) or titles joined by /
(&quot;My NAS/Music/Albums&quot;)</source>
        <translation>Knotenpfade (upnp:/uuid:…/64) oder Titel, verbunden
durch / (&quot;Mein NAS/Musik/Alben&quot;)</translation>
    </message>
    <message>
        <source>is one of %1</source>
        <translation>möglich ist: %1</translation>
    </message>
    <message>
        <source>ok</source>
        <translation>ok</translation>
    </message>
    <message>
        <source>warning</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>missing</source>
        <translation>fehlt</translation>
    </message>
    <message>
        <source>bus limits</source>
        <translation>Grenzen des Busses</translation>
    </message>
    <message>
        <source>could not be measured (%1); a bus with the daemon&apos;s built-in limit takes 128 calls at once, which is too few.</source>
        <translation>ließen sich nicht messen (%1); ein Bus mit der eingebauten Grenze des Dienstes nimmt 128 Aufrufe zugleich an, was zu wenig ist.</translation>
    </message>
    <message>
        <source>the bus takes only %1 unanswered calls of one program (max_replies_per_connection). When 200 tracks are played at once most of them lose their URL, and big folders are read in part. Set the limit to 50000 in the bus&apos;s configuration, as session buses have it.</source>
        <translation>Der Bus nimmt nur %1 unbeantwortete Aufrufe eines Programms an (max_replies_per_connection). Werden 200 Titel auf einmal abgespielt, verlieren die meisten ihre URL, und große Ordner werden nur zum Teil gelesen. Setzen Sie die Grenze in der Konfiguration des Busses auf 50000, wie Sitzungsbusse sie haben.</translation>
    </message>
    <message>
        <source>takes %1 unanswered calls of one program.</source>
        <translation>nimmt %1 unbeantwortete Aufrufe eines Programms an.</translation>
    </message>
    <message>
        <source>takes more than %1 unanswered calls of one program.</source>
        <translation>nimmt mehr als %1 unbeantwortete Aufrufe eines Programms an.</translation>
    </message>
    <message>
        <source>%1 has the name %2 but doesn&apos;t answer. End it, or start it again.</source>
        <translation>%1 hat den Namen %2, antwortet aber nicht. Beenden Sie das Programm oder starten Sie es neu.</translation>
    </message>
    <message>
        <source>%1 has the name %2, started for this run.</source>
        <translation>%1 hat den Namen %2, gestartet für diesen Aufruf.</translation>
    </message>
    <message>
        <source>yyyy-MM-dd HH:mm:ss</source>
        <comment>as QDateTime::toString() writes it</comment>
        <translation>dd.MM.yyyy HH:mm:ss</translation>
    </message>
    <message>
        <source>%1 has the name %2, there since %3; it ends when nobody has used it for a while, or by &quot;orka stop&quot;.</source>
        <translation>%1 hat den Namen %2, läuft seit %3; es endet, wenn es eine Weile niemand benutzt hat, oder durch &quot;orka stop&quot;.</translation>
    </message>
    <message>
        <source>%1 has the name %2, there since %3.</source>
        <translation>%1 hat den Namen %2, läuft seit %3.</translation>
    </message>
    <message>
        <source>bus</source>
        <translation>Bus</translation>
    </message>
    <message>
        <source>media service</source>
        <translation>Mediendienst</translation>
    </message>
    <message>
        <source>Asking the media servers</source>
        <translation>Frage die Medienserver</translation>
    </message>
    <message>
        <source>%1 is listed, but does not answer within %2 seconds. It may be busy, asleep or switched off.</source>
        <translation>%1 ist aufgeführt, antwortet aber nicht innerhalb von %2 Sekunden. Der Server ist vielleicht beschäftigt, im Ruhezustand oder ausgeschaltet.</translation>
    </message>
    <message>
        <source>media servers</source>
        <translation>Medienserver</translation>
    </message>
    <message>
        <source>none has shown up. Start one on this network; a firewall may keep UDP port 1900 closed.</source>
        <translation>Keiner hat sich gemeldet. Starten Sie einen in diesem Netzwerk; vielleicht sperrt eine Firewall den UDP-Port 1900.</translation>
    </message>
    <message>
        <source>media server</source>
        <translation>Medienserver</translation>
    </message>
    <message>
        <source>the media service lists %1, but does not tell all about it.</source>
        <translation>Der Mediendienst führt %1 auf, sagt aber nicht alles über ihn.</translation>
    </message>
    <message>
        <source>%1 can be browsed, not searched.</source>
        <translation>%1 lässt sich durchblättern, aber nicht durchsuchen.</translation>
    </message>
    <message>
        <source>%1 can be searched by %2.</source>
        <translation>%1 lässt sich durchsuchen nach %2.</translation>
    </message>
    <message>
        <source>network</source>
        <translation>Netzwerk</translation>
    </message>
    <message>
        <source>no interface of this machine carries multicast, by which media servers are found. Connect one, or name a server by its address: orka servers --add ADDRESS.</source>
        <translation>Keine Schnittstelle dieses Rechners überträgt Multicast, womit Medienserver gefunden werden. Schließen Sie eine an oder nennen Sie einen Server mit seiner Adresse: orka servers --add ADRESSE.</translation>
    </message>
    <message>
        <source>media servers are listened for at %1.</source>
        <translation>Medienserver werden gesucht über %1.</translation>
    </message>
    <message>
        <source>addresses</source>
        <translation>Adressen</translation>
    </message>
    <message>
        <source>this machine has none that others can reach.</source>
        <translation>Dieser Rechner hat keine, die andere erreichen.</translation>
    </message>
    <message>
        <source>player</source>
        <translation>Abspielprogramm</translation>
    </message>
    <message>
        <source>mpv is there.</source>
        <translation>mpv ist vorhanden.</translation>
    </message>
    <message>
        <source>mpv isn&apos;t installed; &quot;orka play&quot; needs it, or --player.</source>
        <translation>mpv ist nicht installiert; &quot;orka play&quot; braucht es oder --player.</translation>
    </message>
    <message>
        <source>kept addresses</source>
        <translation>gemerkte Adressen</translation>
    </message>
    <message>
        <source>plug-in</source>
        <translation>Plug-in</translation>
    </message>
    <message>
        <source>answer</source>
        <translation>Antwort</translation>
    </message>
    <message>
        <source>What is there and what is missing</source>
        <translation>Was vorhanden ist und was fehlt</translation>
    </message>
    <message>
        <source>settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>every global option is as it is by default.</source>
        <translation>Alle globalen Optionen haben ihren Standardwert.</translation>
    </message>
    <message>
        <source>loaded.</source>
        <translation>geladen.</translation>
    </message>
    <message numerus="yes">
        <source>There is nothing of this kind, but %Ln of others; --kind all takes them.</source>
        <translation>
            <numerusform>Von dieser Art gibt es nichts, aber eines von anderen; --kind all nimmt es mit.</numerusform>
            <numerusform>Von dieser Art gibt es nichts, aber %Ln von anderen; --kind all nimmt sie mit.</numerusform>
        </translation>
    </message>
    <message>
        <source>A device gets nothing there, though there are tracks: the media server&apos;s search doesn&apos;t give them. Leave --quick out.</source>
        <translation>Ein Gerät bekommt dort nichts, obwohl es Titel gibt: Die Suche des Medienservers liefert sie nicht. Lassen Sie --quick weg.</translation>
    </message>
    <message numerus="yes">
        <source>The media server&apos;s search counts %Ln more tracks in %1 than it gives.</source>
        <translation>
            <numerusform>Die Suche des Medienservers zählt in %1 einen Titel mehr, als sie liefert.</numerusform>
            <numerusform>Die Suche des Medienservers zählt in %1 %Ln Titel mehr, als sie liefert.</numerusform>
        </translation>
    </message>
    <message>
        <source>Collecting</source>
        <translation>Sammle</translation>
    </message>
    <message>
        <source>This quick list may be cut: a device asks for %1 tracks of each folder; of folders that can&apos;t be searched it goes through the last one alone, and leaves out what doesn&apos;t answer. Without --quick it is complete.</source>
        <translation>Diese schnelle Liste ist vielleicht gekürzt: Ein Gerät fragt nach %1 Titeln je Ordner; von Ordnern, die sich nicht durchsuchen lassen, geht es nur den letzten durch und lässt weg, was nicht antwortet. Ohne --quick ist sie vollständig.</translation>
    </message>
    <message>
        <source>What to take from folders and servers: audio is the
default; more than one with commas</source>
        <translation>Was aus Ordnern und Servern genommen wird: ohne Angabe
audio; mehrere durch Kommas getrennt</translation>
    </message>
    <message>
        <source>One request, as a device asks for a playlist: at most the
first 100 tracks of a folder</source>
        <translation>Eine Anfrage, wie ein Gerät sie für eine Wiedergabeliste
stellt: höchstens die ersten 100 Titel eines Ordners</translation>
    </message>
    <message numerus="yes">
        <source>And %Ln more.</source>
        <translation>
            <numerusform>Und einer mehr.</numerusform>
            <numerusform>Und %Ln weitere.</numerusform>
        </translation>
    </message>
    <message>
        <source>The list is incomplete:
  %1</source>
        <translation>Die Liste ist unvollständig:
  %1</translation>
    </message>
    <message>
        <source>The playlist of tracks, folders and servers</source>
        <translation>Die Wiedergabeliste von Titeln, Ordnern und Servern</translation>
    </message>
    <message>
        <source>How the playlist is written (table)</source>
        <translation>Wie die Wiedergabeliste geschrieben wird (table)</translation>
    </message>
    <message>
        <source>--json and --format %1 contradict each other. Leave one of them out.</source>
        <translation>--json und --format %1 widersprechen einander. Lassen Sie eines davon weg.</translation>
    </message>
    <message>
        <source>Plays tracks, folders and servers</source>
        <translation>Spielt Titel, Ordner und ganze Server ab</translation>
    </message>
    <message>
        <source>The player (mpv), with its own options; it is given an
M3U8 file as last argument, and its exit status becomes
ours</source>
        <translation>Das Abspielprogramm (mpv) mit seinen eigenen Optionen; es
erhält als letztes Argument eine M3U8-Datei, und orka
endet mit seinem Rückgabewert</translation>
    </message>
    <message>
        <source>There is nothing to play there. &quot;orka ls&quot; shows what is.</source>
        <translation>Dort gibt es nichts abzuspielen. &quot;orka ls&quot; zeigt, was da ist.</translation>
    </message>
    <message>
        <source>A node path, encoded</source>
        <translation>Ein Knotenpfad, kodiert</translation>
    </message>
    <message>
        <source>Roles, comma-separated; every role where none is named</source>
        <translation>Rollen, durch Kommas getrennt; ohne Angabe alle</translation>
    </message>
    <message>
        <source>One rows request as it is</source>
        <translation>Eine einzelne Zeilenanfrage (rows), unverändert</translation>
    </message>
    <message>
        <source>First row, counted from 0 (0)</source>
        <translation>Erste Zeile, ab 0 gezählt (0)</translation>
    </message>
    <message>
        <source>Last row, inclusive (19)</source>
        <translation>Letzte Zeile, einschließlich (19)</translation>
    </message>
    <message>
        <source>There are no rows from %1 to %2. Count from 0 and write the smaller number as --first.</source>
        <translation>Zeilen von %1 bis %2 gibt es nicht. Zählen Sie ab 0 und nennen Sie die kleinere Zahl als --first.</translation>
    </message>
    <message>
        <source>One data request as it is</source>
        <translation>Eine einzelne Datenanfrage (data), unverändert</translation>
    </message>
    <message>
        <source>One set-data request as it is</source>
        <translation>Eine einzelne Setzanfrage (set-data), unverändert</translation>
    </message>
    <message>
        <source>The value: an object becomes a hash, an array a list</source>
        <translation>Der Wert: Aus einem Objekt wird ein Hash, aus einem Array
eine Liste</translation>
    </message>
    <message>
        <source>Waiting for the answer</source>
        <translation>Warte auf die Antwort</translation>
    </message>
    <message>
        <source>%1 can&apos;t search. Browse it with &quot;orka ls&quot;, or take everything below a folder with &quot;orka queue&quot;, which walks through it.</source>
        <translation>%1 kann nicht suchen. Blättern Sie darin mit &quot;orka ls&quot; oder nehmen Sie alles unter einem Ordner mit &quot;orka queue&quot;, das ihn durchgeht.</translation>
    </message>
    <message>
        <source>%1 can&apos;t search by %2, only by %3. Use --%4.</source>
        <translation>%1 kann nicht nach %2 suchen, nur nach %3. Verwenden Sie --%4.</translation>
    </message>
    <message>
        <source> and by </source>
        <translation> und nach </translation>
    </message>
    <message>
        <source>Part of the artist</source>
        <translation>Teil des Interpreten</translation>
    </message>
    <message>
        <source>Nothing in %1 has an artist with %2 in it.</source>
        <translation>In %1 gibt es keinen Interpreten, der %2 enthält.</translation>
    </message>
    <message>
        <source>Part of the album</source>
        <translation>Teil des Albums</translation>
    </message>
    <message>
        <source>Nothing in %1 has an album with %2 in it.</source>
        <translation>In %1 gibt es kein Album, das %2 enthält.</translation>
    </message>
    <message>
        <source>Part of the title</source>
        <translation>Teil des Titels</translation>
    </message>
    <message>
        <source>Nothing in %1 has a title with %2 in it.</source>
        <translation>In %1 gibt es keinen Titel, der %2 enthält.</translation>
    </message>
    <message>
        <source>Finds tracks by artist, album or title</source>
        <translation>Findet Titel nach Interpret, Album oder Titel</translation>
    </message>
    <message>
        <source>A search goes by one thing: write --artist TEXT, --album TEXT or --title TEXT.</source>
        <translation>Gesucht wird nach einem Merkmal: Schreiben Sie --artist TEXT, --album TEXT oder --title TEXT.</translation>
    </message>
    <message>
        <source>The list of media servers can&apos;t be searched. Name one of them; &quot;orka servers&quot; lists them.</source>
        <translation>Die Liste der Medienserver lässt sich nicht durchsuchen. Nennen Sie einen davon; &quot;orka servers&quot; führt sie auf.</translation>
    </message>
    <message>
        <source>%1 Try again in some seconds, or browse it with &quot;orka ls&quot;.</source>
        <translation>%1 Versuchen Sie es in einigen Sekunden erneut oder blättern Sie darin mit &quot;orka ls&quot;.</translation>
    </message>
    <message>
        <source>Entering the search text</source>
        <translation>Gebe den Suchtext ein</translation>
    </message>
    <message>
        <source>A page to look at, in a browser</source>
        <translation>Eine Seite zum Ansehen im Browser</translation>
    </message>
    <message>
        <source>IP address to listen on (127.0.0.1); beyond loopback over
HTTPS, and only for those who have the printed token
(0.0.0.0: for the whole network)</source>
        <translation>IP-Adresse, unter der gelauscht wird (127.0.0.1); über
Loopback hinaus per HTTPS und nur für die, die das
ausgegebene Token haben (0.0.0.0: für das ganze Netzwerk)</translation>
    </message>
    <message>
        <source>Port (8770, or the next free one)</source>
        <translation>Port (8770 oder der nächste freie)</translation>
    </message>
    <message>
        <source>Certificate for HTTPS, in PEM; one of our own where
none is named</source>
        <translation>Zertifikat für HTTPS als PEM; ohne Angabe ein eigenes</translation>
    </message>
    <message>
        <source>Its key, where that is another file</source>
        <translation>Sein Schlüssel, falls der in einer anderen Datei steht</translation>
    </message>
    <message>
        <source>Show the page in this machine&apos;s browser</source>
        <translation>Die Seite im Browser dieses Rechners zeigen</translation>
    </message>
    <message>
        <source>The media server %1 is left out: the media service lists it, but does not tell all about it. It may not answer; try again with a longer --wait.</source>
        <translation>Der Medienserver %1 fehlt hier: Der Mediendienst führt ihn auf, sagt aber nicht alles über ihn. Vielleicht antwortet er nicht; versuchen Sie es mit längerem --wait erneut.</translation>
    </message>
    <message>
        <source>service left</source>
        <translation>Dienst weg</translation>
    </message>
    <message>
        <source>The media service has left the bus; waiting for it.</source>
        <translation>Der Mediendienst hat den Bus verlassen; ich warte auf ihn.</translation>
    </message>
    <message>
        <source>service back</source>
        <translation>Dienst zurück</translation>
    </message>
    <message>
        <source>departed</source>
        <translation>verschwunden</translation>
    </message>
    <message>
        <source>arrived</source>
        <translation>erschienen</translation>
    </message>
    <message>
        <source>no</source>
        <translation>nein</translation>
    </message>
    <message>
        <source>yes</source>
        <translation>ja</translation>
    </message>
    <message>
        <source>title</source>
        <translation>Titel</translation>
    </message>
    <message>
        <source>search</source>
        <translation>Suche</translation>
    </message>
    <message>
        <source>path</source>
        <translation>Pfad</translation>
    </message>
    <message>
        <source>The media servers on the network</source>
        <translation>Die Medienserver im Netzwerk</translation>
    </message>
    <message>
        <source>Print arrivals and departures until stopped; with --json
one document a line:
{&quot;event&quot;:&quot;arrived&quot;|&quot;departed&quot;,&quot;server&quot;:{…}}; the media
service&apos;s own leaving and coming back are told, too:
{&quot;event&quot;:&quot;service left&quot;|&quot;service back&quot;}</source>
        <translation>Bis zum Abbruch ausgeben, wer kommt und geht; mit --json
ein Dokument je Zeile:
{&quot;event&quot;:&quot;arrived&quot;|&quot;departed&quot;,&quot;server&quot;:{…}}; auch das
Gehen und Wiederkommen des Mediendienstes wird gemeldet:
{&quot;event&quot;:&quot;service left&quot;|&quot;service back&quot;}</translation>
    </message>
    <message>
        <source>Look at this address from now on, in every command</source>
        <translation>Ab jetzt bei jedem Befehl unter dieser Adresse nachsehen</translation>
    </message>
    <message>
        <source>No longer look at this address</source>
        <translation>Unter dieser Adresse nicht mehr nachsehen</translation>
    </message>
    <message>
        <source>Only one of --watch, --add and --forget can be done.</source>
        <translation>Von --watch, --add und --forget geht nur eines.</translation>
    </message>
    <message>
        <source>Looking for the media server</source>
        <translation>Suche den Medienserver</translation>
    </message>
    <message>
        <source>The address %1 isn&apos;t kept; none is.</source>
        <translation>Die Adresse %1 ist nicht gemerkt; es ist keine gemerkt.</translation>
    </message>
    <message>
        <source>The address %1 isn&apos;t kept; these are: %2.</source>
        <translation>Die Adresse %1 ist nicht gemerkt; gemerkt sind: %2.</translation>
    </message>
    <message>
        <source>The address %1 isn&apos;t kept any more, but the media service has not said in time that it no longer looks there. &quot;orka stop&quot; ends it.</source>
        <translation>Die Adresse %1 ist nicht mehr gemerkt, aber der Mediendienst hat nicht rechtzeitig gesagt, dass er dort nicht mehr nachsieht. &quot;orka stop&quot; beendet ihn.</translation>
    </message>
    <message>
        <source>Ends the media service that a command left running</source>
        <translation>Beendet den Mediendienst, den ein Befehl laufen ließ</translation>
    </message>
    <message>
        <source>No media service is running, so there is nothing to end.</source>
        <translation>Es läuft kein Mediendienst, also gibt es nichts zu beenden.</translation>
    </message>
    <message>
        <source>Usage</source>
        <translation>Aufruf</translation>
    </message>
    <message>
        <source>OPTIONS</source>
        <translation>OPTIONEN</translation>
    </message>
    <message>
        <source>Options</source>
        <translation>Optionen</translation>
    </message>
    <message>
        <source>Positionals</source>
        <translation>Argumente</translation>
    </message>
    <message>
        <source>Print this help message and exit</source>
        <translation>Diese Hilfe ausgeben</translation>
    </message>
    <message>
        <source>is made of letters, digits, &quot;.&quot;, &quot;_&quot; and &quot;-&quot;</source>
        <translation>erlaubt sind Buchstaben, Ziffern, &quot;.&quot;, &quot;_&quot; und &quot;-&quot;</translation>
    </message>
    <message>
        <source>is a number of seconds from 0 to 86400</source>
        <translation>verlangt ist eine Anzahl von Sekunden zwischen 0 und 86400</translation>
    </message>
    <message>
        <source>The worker&apos;s library; this installation&apos;s where none is
named</source>
        <translation>Die Bibliothek des Workers; ohne Angabe die dieser
Installation</translation>
    </message>
    <message>
        <source>First part of the worker&apos;s node paths (upnp)</source>
        <translation>Erster Teil der Knotenpfade des Workers (upnp)</translation>
    </message>
    <message>
        <source>Service id that the worker puts into its rows</source>
        <translation>Dienstkennung, die der Worker in seine Zeilen setzt</translation>
    </message>
    <message>
        <source>session (the default), system or a D-Bus address</source>
        <translation>session (Standard), system oder eine D-Bus-Adresse</translation>
    </message>
    <message>
        <source>session: the one on the bus; bridge: a bridge of our own,
on a private bus where there is no session bus;
auto (the default): the first, else the second</source>
        <translation>session: der auf dem Bus; bridge: eine eigene Brücke, auf
einem privaten Bus, wo es keinen Sitzungsbus gibt;
auto (Standard): das Erste, sonst das Zweite</translation>
    </message>
    <message>
        <source>The bridge&apos;s program; this installation&apos;s where none is
named</source>
        <translation>Das Programm der Brücke; ohne Angabe das dieser
Installation</translation>
    </message>
    <message>
        <source>Where a media server is that doesn&apos;t show up by itself:
host, host:port or the URL of its description; may be
given several times</source>
        <translation>Wo ein Medienserver ist, der sich nicht von selbst
meldet: Rechner, Rechner:Port oder die URL seiner
Beschreibung; mehrfach möglich</translation>
    </message>
    <message>
        <source>How long a bridge that was started stays without a client
(600); 0: it ends with the command</source>
        <translation>Wie lange eine gestartete Brücke unbenutzt bleibt (600);
0: Sie endet mit dem Befehl</translation>
    </message>
    <message>
        <source>How long a media server may take to show up (5)</source>
        <translation>Wie lange ein Medienserver brauchen darf, bis er
erscheint (5)</translation>
    </message>
    <message>
        <source>How long an answer may take (30)</source>
        <translation>Wie lange eine Antwort dauern darf (30)</translation>
    </message>
    <message>
        <source>Print one JSON document on standard output</source>
        <translation>Ein JSON-Dokument auf die Standardausgabe schreiben;
alles ist dann englisch</translation>
    </message>
    <message>
        <source>A log4cplus properties file</source>
        <translation>Eine Konfigurationsdatei für log4cplus</translation>
    </message>
    <message>
        <source>Log to standard error: -v what happens, -vv details,
-vvv everything</source>
        <translation>Protokoll auf die Standardfehlerausgabe: -v was
geschieht, -vv Einzelheiten, -vvv alles</translation>
    </message>
    <message>
        <source>Browses, searches and plays UPnP media servers through a media device&apos;s worker.</source>
        <translation>Findet und spielt, was auf UPnP-Medienservern liegt, über den Worker eines
Mediengeräts.</translation>
    </message>
    <message>
        <source>Exit status: 0 answered; 1 answered with an error; 2 wrong usage; 3 no media
service, no such place or no plug-in; 4 no answer in time; 130 interrupted.
&quot;orka COMMAND --help&quot; tells more.

Example:
  orka ls &quot;My NAS/Music/Albums&quot;</source>
        <translation>Rückgabewert: 0 beantwortet; 1 mit einem Fehler beantwortet; 2 falscher Aufruf;
3 kein Mediendienst, kein solcher Ort oder kein Plug-in; 4 keine rechtzeitige
Antwort; 130 abgebrochen.
&quot;orka BEFEHL --help&quot; sagt mehr.

Beispiel:
  orka ls &quot;Mein NAS/Musik/Alben&quot;</translation>
    </message>
    <message>
        <source>&quot;orka %1&quot; doesn&apos;t take %2. &quot;orka %1 --help&quot; tells what it takes.</source>
        <translation>&quot;orka %1&quot; kann mit %2 nichts anfangen. &quot;orka %1 --help&quot; sagt, was möglich ist.</translation>
    </message>
    <message>
        <source>There is no command or option %1.%2 &quot;orka --help&quot; lists them.</source>
        <translation>Einen Befehl oder eine Option %1 gibt es nicht.%2 &quot;orka --help&quot; führt sie auf.</translation>
    </message>
    <message>
        <source>Name a command, like &quot;orka servers&quot;; &quot;orka --help&quot; lists them.</source>
        <translation>Nennen Sie einen Befehl wie &quot;orka servers&quot;; &quot;orka --help&quot; führt sie auf.</translation>
    </message>
    <message>
        <source>The argument %1 is not in UTF-8, as every text of this program is. Set the terminal or the script to UTF-8.</source>
        <translation>Das Argument %1 ist nicht in UTF-8 wie alle Texte dieses Programms. Stellen Sie das Terminal oder das Skript auf UTF-8 ein.</translation>
    </message>
    <message>
        <source>What this program is and runs with</source>
        <translation>Was dieses Programm ist und womit es läuft</translation>
    </message>
    <message>
        <source>%1 at character %2</source>
        <translation>%1 bei Zeichen %2</translation>
    </message>
    <message numerus="yes">
        <source>it holds %Ln values</source>
        <translation>
            <numerusform>er enthält einen Wert</numerusform>
            <numerusform>er enthält %Ln Werte</numerusform>
        </translation>
    </message>
    <message>
        <source>The value is not one JSON value: %1. Write an object, a list or a string, like &apos;{&quot;string_&quot;:&quot;abba&quot;}&apos;.</source>
        <translation>Der Wert ist nicht genau ein JSON-Wert: %1. Schreiben Sie ein Objekt, eine Liste oder eine Zeichenkette wie &apos;{&quot;string_&quot;:&quot;abba&quot;}&apos;.</translation>
    </message>
    <message>
        <source>The log configuration %1 can&apos;t be read. Name a log4cplus properties file that is there.</source>
        <translation>Die Protokollkonfiguration %1 ist nicht lesbar. Nennen Sie eine vorhandene Konfigurationsdatei für log4cplus.</translation>
    </message>
    <message>
        <source>The answer could not be written to standard output: %1.</source>
        <translation>Die Antwort konnte nicht auf die Standardausgabe geschrieben werden: %1.</translation>
    </message>
    <message>
        <source>%1 is left out: its address %2 is not one that a player may be given (http, https or rtsp).</source>
        <translation>%1 fehlt hier: Die Adresse %2 ist keine, die ein Abspielprogramm bekommen darf (http, https oder rtsp).</translation>
    </message>
    <message>
        <source>%1 s (Ctrl-C stops)</source>
        <translation>%1 s (Strg-C bricht ab)</translation>
    </message>
    <message numerus="yes">
        <source>%Ln items, %1 in all.</source>
        <translation>
            <numerusform>%Ln Eintrag, insgesamt %1.</numerusform>
            <numerusform>%Ln Einträge, insgesamt %1.</numerusform>
        </translation>
    </message>
    <message>
        <source>no.</source>
        <translation>Nr.</translation>
    </message>
    <message>
        <source>artist</source>
        <translation>Interpret</translation>
    </message>
    <message>
        <source>album</source>
        <translation>Album</translation>
    </message>
    <message>
        <source>length</source>
        <translation>Länge</translation>
    </message>
    <message>
        <source>server</source>
        <translation>Server</translation>
    </message>
    <message>
        <source>row</source>
        <translation>Zeile</translation>
    </message>
    <message>
        <source>kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>genre</source>
        <translation>Genre</translation>
    </message>
    <message>
        <source>date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>format</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>kbit/s</source>
        <translation>kbit/s</translation>
    </message>
    <message numerus="yes">
        <source>None of %Ln rows is of this kind.</source>
        <translation>
            <numerusform>Die eine Zeile ist nicht von dieser Art.</numerusform>
            <numerusform>Keine von %Ln Zeilen ist von dieser Art.</numerusform>
        </translation>
    </message>
    <message>
        <source>There are no rows.</source>
        <translation>Es gibt keine Zeilen.</translation>
    </message>
    <message numerus="yes">
        <source>None of %Ln rows is in this range.</source>
        <translation>
            <numerusform>Die eine Zeile liegt nicht in diesem Bereich.</numerusform>
            <numerusform>Keine von %Ln Zeilen liegt in diesem Bereich.</numerusform>
        </translation>
    </message>
    <message>
        <source>Tracks</source>
        <translation>Titel</translation>
    </message>
    <message>
        <source>Folders</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>in</source>
        <comment>a folder</comment>
        <translation>in</translation>
    </message>
    <message>
        <source>Titles that are there more than once</source>
        <translation>Titel, die mehrfach vorkommen</translation>
    </message>
    <message>
        <source>Some titles are there more than once, and the media server doesn&apos;t say in which folders.</source>
        <translation>Manche Titel kommen mehrfach vor, und der Medienserver sagt nicht, in welchen Ordnern.</translation>
    </message>
    <message>
        <source>folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>track</source>
        <translation>Titel</translation>
    </message>
    <message>
        <source>video</source>
        <translation>Video</translation>
    </message>
    <message>
        <source>image</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>item</source>
        <translation>Objekt</translation>
    </message>
    <message>
        <source>yyyy-MM-dd</source>
        <comment>as QDateTime::toString() writes it</comment>
        <translation>dd.MM.yyyy</translation>
    </message>
    <message>
        <source>yyyy-MM-dd&apos;T&apos;HH:mm:ss</source>
        <comment>as QDateTime::toString() writes it</comment>
        <translation>dd.MM.yyyy HH:mm:ss</translation>
    </message>
    <message numerus="yes">
        <source>%Ln rows.</source>
        <translation>
            <numerusform>%Ln Zeile.</numerusform>
            <numerusform>%Ln Zeilen.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1 of %Ln rows.</source>
        <translation>
            <numerusform>%1 von %Ln Zeile.</numerusform>
            <numerusform>%1 von %Ln Zeilen.</numerusform>
        </translation>
    </message>
    <message>
        <source>%1, %2.</source>
        <translation>%1, %2.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln folders</source>
        <translation>
            <numerusform>%Ln Ordner</numerusform>
            <numerusform>%Ln Ordner</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln others</source>
        <translation>
            <numerusform>%Ln anderes</numerusform>
            <numerusform>%Ln andere</numerusform>
        </translation>
    </message>
    <message>
        <source>There is no player %1. Install it, or name another with --player; &quot;orka queue --format m3u8&quot; writes a playlist for any.</source>
        <translation>Ein Abspielprogramm %1 gibt es nicht. Installieren Sie es oder nennen Sie mit --player ein anderes; &quot;orka queue --format m3u8&quot; schreibt eine Wiedergabeliste für jedes.</translation>
    </message>
    <message>
        <source>The playlist can&apos;t be written to %1: %2. Make room there, or set TMPDIR to another folder.</source>
        <translation>Die Wiedergabeliste lässt sich nicht nach %1 schreiben: %2. Schaffen Sie dort Platz oder setzen Sie TMPDIR auf einen anderen Ordner.</translation>
    </message>
    <message>
        <source>Playing %1 of %2: %3</source>
        <translation>Spiele %1 von %2: %3</translation>
    </message>
    <message>
        <source>The player %1 can&apos;t be started: %2. Name another with --player.</source>
        <translation>Das Abspielprogramm %1 lässt sich nicht starten: %2. Nennen Sie mit --player ein anderes.</translation>
    </message>
    <message>
        <source>The configuration file %1 can&apos;t be read. Give yourself the right to read it, or remove it.</source>
        <translation>Die Konfigurationsdatei %1 ist nicht lesbar. Geben Sie sich das Leserecht oder entfernen Sie sie.</translation>
    </message>
    <message>
        <source>Global options, one a line; orka/orka.conf in
$XDG_CONFIG_HOME where none is named</source>
        <translation>Globale Optionen, eine je Zeile; ohne Angabe
orka/orka.conf in $XDG_CONFIG_HOME</translation>
    </message>
    <message>
        <source>The entry %1 in %2 is no global option; &quot;orka --help&quot; lists them, and they stand there without --.</source>
        <translation>Der Eintrag %1 in %2 ist keine globale Option; &quot;orka --help&quot; führt sie auf, und in der Datei stehen sie ohne --.</translation>
    </message>
    <message>
        <source>The entry %1 in %2 has several values; put a text with spaces into double quotes.</source>
        <translation>Der Eintrag %1 in %2 hat mehrere Werte; setzen Sie einen Text mit Leerzeichen in doppelte Anführungszeichen.</translation>
    </message>
    <message>
        <source> (set by %1)</source>
        <translation> (gesetzt durch %1)</translation>
    </message>
    <message>
        <source>%1 (command line)</source>
        <translation>%1 (Befehlszeile)</translation>
    </message>
    <message>
        <source>The media server has moved to another address while it was read, and what came before has the old one. Run the command again.</source>
        <translation>Der Medienserver ist während des Lesens auf eine andere Adresse umgezogen, und was vorher kam, hat noch die alte. Führen Sie den Befehl erneut aus.</translation>
    </message>
    <message>
        <source>The media server&apos;s content has changed while it was read: some of it may be out of date, missing or there twice. Run the command again.</source>
        <translation>Der Inhalt des Medienservers hat sich während des Lesens geändert: Manches kann veraltet sein, fehlen oder doppelt vorkommen. Führen Sie den Befehl erneut aus.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln more</source>
        <translation>
            <numerusform>einer mehr</numerusform>
            <numerusform>%Ln weitere</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The media server gives no address for %Ln of what is in %1, so nobody can play it: %2.</source>
        <translation>
            <numerusform>Der Medienserver nennt für eines der Objekte in %1 keine Adresse, sodass es niemand abspielen kann: %2.</numerusform>
            <numerusform>Der Medienserver nennt für %Ln der Objekte in %1 keine Adresse, sodass sie niemand abspielen kann: %2.</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 isn&apos;t read: it is nested too deep.</source>
        <translation>%1 wird nicht gelesen: Der Ordner ist zu tief verschachtelt.</translation>
    </message>
    <message numerus="yes">
        <source>The media server counts %Ln more rows in %1 than it gives.</source>
        <translation>
            <numerusform>Der Medienserver zählt in %1 eine Zeile mehr, als er liefert.</numerusform>
            <numerusform>Der Medienserver zählt in %1 %Ln Zeilen mehr, als er liefert.</numerusform>
        </translation>
    </message>
    <message>
        <source>Collecting: %1, %2</source>
        <translation>Sammle: %1, %2</translation>
    </message>
    <message numerus="yes">
        <source>%Ln tracks</source>
        <translation>
            <numerusform>%Ln Titel</numerusform>
            <numerusform>%Ln Titel</numerusform>
        </translation>
    </message>
    <message>
        <source> Did you mean %1?</source>
        <translation> Meinten Sie %1?</translation>
    </message>
    <message>
        <source> or </source>
        <translation> oder </translation>
    </message>
    <message>
        <source>%1 is neither a track nor a folder nor a media server, so it can&apos;t be played. Name one of these.</source>
        <translation>%1 ist weder ein Titel noch ein Ordner noch ein Medienserver und lässt sich daher nicht abspielen. Nennen Sie eines davon.</translation>
    </message>
    <message>
        <source>An empty place names nothing. Write a node path or titles joined by &quot;/&quot;, like &quot;My NAS/Music&quot;; &quot;/&quot; alone is the list of media servers.</source>
        <translation>Ein leerer Ort bezeichnet nichts. Schreiben Sie einen Knotenpfad oder durch &quot;/&quot; verbundene Titel wie &quot;Mein NAS/Musik&quot;; &quot;/&quot; allein ist die Liste der Medienserver.</translation>
    </message>
    <message>
        <source>The place %1 has an empty title between two slashes. A slash that belongs to a title is written \/.</source>
        <translation>Der Ort %1 hat einen leeren Titel zwischen zwei Schrägstrichen. Ein Schrägstrich, der zu einem Titel gehört, wird \/ geschrieben.</translation>
    </message>
    <message>
        <source>%1 is no node path. A node path looks like upnp:/uuid:4d69/64?itemType=container, with everything else than letters and digits percent-encoded; &quot;orka --json ls&quot; prints them.</source>
        <translation>%1 ist kein Knotenpfad. Ein Knotenpfad sieht aus wie upnp:/uuid:4d69/64?itemType=container; alles außer Buchstaben und Ziffern ist mit Prozentzeichen kodiert. &quot;orka --json ls&quot; gibt sie aus.</translation>
    </message>
    <message numerus="yes">
        <source>The title %1 is there %Ln times. Name the one you mean:
  %2</source>
        <translation>
            <numerusform>Der Titel %1 kommt einmal vor. Nennen Sie den gemeinten:
  %2</numerusform>
            <numerusform>Der Titel %1 kommt %Ln-mal vor. Nennen Sie den gemeinten:
  %2</numerusform>
        </translation>
    </message>
    <message>
        <source>The media server of %1 hasn&apos;t shown up. &quot;orka servers&quot; lists those that are there; --wait SECONDS waits for one that is starting.</source>
        <translation>Der Medienserver von %1 hat sich nicht gemeldet. &quot;orka servers&quot; führt die vorhandenen auf; --wait SEKUNDEN wartet auf einen, der gerade startet.</translation>
    </message>
    <message>
        <source>There is no media server %1.%2 &quot;orka servers&quot; lists those that are there.</source>
        <translation>Einen Medienserver %1 gibt es nicht.%2 &quot;orka servers&quot; führt die vorhandenen auf.</translation>
    </message>
    <message>
        <source>There may be another %1 in %2: its list is incomplete. %3</source>
        <translation>In %2 gibt es vielleicht noch ein %1: Die Liste ist unvollständig. %3</translation>
    </message>
    <message numerus="yes">
        <source>The media server counts %Ln more entries than it gives.</source>
        <translation>
            <numerusform>Der Medienserver zählt einen Eintrag mehr, als er liefert.</numerusform>
            <numerusform>Der Medienserver zählt %Ln Einträge mehr, als er liefert.</numerusform>
        </translation>
    </message>
    <message>
        <source>There is no folder %1 in %2 so far, but the list is incomplete: it may be among what is missing. %3</source>
        <translation>Einen Ordner %1 gibt es in %2 bisher nicht, aber die Liste ist unvollständig: Er kann zu dem gehören, was fehlt. %3</translation>
    </message>
    <message>
        <source>There is no entry %1 in %2 so far, but the list is incomplete: it may be among what is missing. %3</source>
        <translation>Einen Eintrag %1 gibt es in %2 bisher nicht, aber die Liste ist unvollständig: Er kann zu dem gehören, was fehlt. %3</translation>
    </message>
    <message>
        <source>There is no folder %1 in %2.%3 &quot;orka ls&quot; lists what is there.</source>
        <translation>Einen Ordner %1 gibt es in %2 nicht.%3 &quot;orka ls&quot; führt auf, was da ist.</translation>
    </message>
    <message>
        <source>There is no entry %1 in %2.%3 &quot;orka ls&quot; lists what is there.</source>
        <translation>Einen Eintrag %1 gibt es in %2 nicht.%3 &quot;orka ls&quot; führt auf, was da ist.</translation>
    </message>
    <message>
        <source>Reading rows from %1</source>
        <translation>Lese Zeilen ab %1</translation>
    </message>
    <message>
        <source>%1 is no range of rows. Write the first and the last row, counted from 0, like --rows 0-19.</source>
        <translation>%1 ist kein Zeilenbereich. Schreiben Sie die erste und die letzte Zeile, ab 0 gezählt, wie --rows 0-19.</translation>
    </message>
    <message>
        <source>The range of rows %1 ends before it begins. Write the smaller number first, like --rows 0-19.</source>
        <translation>Der Zeilenbereich %1 endet, bevor er beginnt. Schreiben Sie die kleinere Zahl zuerst, wie --rows 0-19.</translation>
    </message>
    <message>
        <source>%1 is no sample. Write START,END,STEP: positions counted from 0 and the distance between two of them, like 0,9999,100.</source>
        <translation>%1 ist keine Stichprobe. Schreiben Sie START,ENDE,ABSTAND: ab 0 gezählte Stellen und den Abstand zwischen zweien davon, wie 0,9999,100.</translation>
    </message>
    <message>
        <source>A sample with step 0 would take the same row again and again. Write a step of at least 1, like 0,9999,100.</source>
        <translation>Eine Stichprobe mit Abstand 0 nähme immer wieder dieselbe Zeile. Schreiben Sie einen Abstand von mindestens 1, wie 0,9999,100.</translation>
    </message>
    <message>
        <source>The sample %1 ends before it begins. Write the smaller position first, like 0,9999,100.</source>
        <translation>Die Stichprobe %1 endet, bevor sie beginnt. Schreiben Sie die kleinere Stelle zuerst, wie 0,9999,100.</translation>
    </message>
    <message>
        <source>%1 has not said yet what it can search.</source>
        <translation>%1 hat noch nicht gesagt, wonach er suchen kann.</translation>
    </message>
    <message>
        <source>Looking for media servers</source>
        <translation>Suche Medienserver</translation>
    </message>
    <message>
        <source>%1 doesn&apos;t tell the numbers of its tracks, so they can&apos;t be sorted by them. Try --sort title.</source>
        <translation>%1 nennt die Nummern seiner Titel nicht, daher lassen sie sich nicht danach sortieren. Versuchen Sie --sort title.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln more rows are counted in %1 than its server gives.</source>
        <translation>
            <numerusform>In %1 wird eine Zeile mehr gezählt, als der Server liefert.</numerusform>
            <numerusform>In %1 werden %Ln Zeilen mehr gezählt, als der Server liefert.</numerusform>
        </translation>
    </message>
    <message>
        <source>%1
Run with --help for more information.</source>
        <translation>%1
Mit --help gibt es mehr Informationen.</translation>
    </message>
    <message>
        <source>REQUIRED</source>
        <translation>ERFORDERLICH</translation>
    </message>
    <message>
        <source>%1 is required</source>
        <translation>%1 ist erforderlich</translation>
    </message>
    <message>
        <source>%1: %2 required %3 missing</source>
        <translation>%1: %2 erforderliches Argument (%3) fehlt</translation>
    </message>
    <message>
        <source>%1: Value %2 not in range %3 to %4</source>
        <translation>%1: Der Wert %2 liegt nicht zwischen %3 und %4</translation>
    </message>
    <message>
        <source>Could not convert: %1 = %2</source>
        <translation>Der Wert ist ungültig: %1 = %2</translation>
    </message>
    <message>
        <source>There is no media service, and orka-media-bridge is neither installed nor on PATH. Install it, or name it with --bridge.</source>
        <translation>Es gibt keinen Mediendienst, und orka-media-bridge ist weder installiert noch im PATH. Installieren Sie es oder nennen Sie es mit --bridge.</translation>
    </message>
    <message>
        <source>it ended</source>
        <translation>er endete</translation>
    </message>
    <message>
        <source>it ended with status %1</source>
        <translation>er endete mit Status %1</translation>
    </message>
    <message>
        <source>The media service %1 could not be started: %2. Try it by hand with --help, or name another with --bridge.</source>
        <translation>Der Mediendienst %1 konnte nicht gestartet werden: %2. Probieren Sie ihn von Hand mit --help oder nennen Sie mit --bridge einen anderen.</translation>
    </message>
    <message>
        <source>The media service %1 could not be started: %2 and said %3. Try it by hand with --help, or name another with --bridge.</source>
        <translation>Der Mediendienst %1 konnte nicht gestartet werden: %2 und meldete %3. Probieren Sie ihn von Hand mit --help oder nennen Sie mit --bridge einen anderen.</translation>
    </message>
    <message>
        <source>the bus did not answer in time</source>
        <translation>der Bus antwortete nicht rechtzeitig</translation>
    </message>
    <message>
        <source>%1 (process %2)</source>
        <translation>%1 (Prozess %2)</translation>
    </message>
    <message>
        <source>There is no session bus, and no bus could be started instead: %1 Install the package dbus-daemon, or name a bus with --bus ADDRESS.</source>
        <translation>Es gibt keinen Sitzungsbus, und stattdessen ließ sich kein Bus starten: %1 Installieren Sie das Paket dbus-daemon oder nennen Sie einen Bus mit --bus ADRESSE.</translation>
    </message>
    <message>
        <source>there is no program dbus-daemon.</source>
        <translation>Das Programm dbus-daemon fehlt.</translation>
    </message>
    <message>
        <source>Starting a message bus</source>
        <translation>Starte einen Nachrichtenbus</translation>
    </message>
    <message>
        <source>dbus-daemon said %1.</source>
        <translation>dbus-daemon meldete %1.</translation>
    </message>
    <message>
        <source>Measuring the bus</source>
        <translation>Messe den Bus</translation>
    </message>
    <message numerus="yes">
        <source>%Ln seconds</source>
        <comment>within</comment>
        <translation>
            <numerusform>einer Sekunde</numerusform>
            <numerusform>%Ln Sekunden</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 did not answer within %2. It may be busy, asleep or switched off; try again, or restart it.</source>
        <translation>%1 hat nicht innerhalb von %2 geantwortet. Er ist vielleicht beschäftigt, im Ruhezustand oder ausgeschaltet; versuchen Sie es erneut oder starten Sie ihn neu.</translation>
    </message>
    <message>
        <source>The media service did not answer within %1. End it, or start it again; &quot;orka doctor&quot; tells which program it is.</source>
        <translation>Der Mediendienst hat nicht innerhalb von %1 geantwortet. Beenden Sie ihn oder starten Sie ihn neu; &quot;orka doctor&quot; sagt, welches Programm es ist.</translation>
    </message>
    <message>
        <source>%1 is not there any more. &quot;orka servers&quot; lists those that are there.</source>
        <translation>%1 ist nicht mehr da. &quot;orka servers&quot; führt die vorhandenen auf.</translation>
    </message>
    <message>
        <source>%1 failed once, but answers now. Try again.</source>
        <translation>%1 hatte kurz eine Störung, antwortet jetzt aber wieder. Versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>%1 could not be searched: %2.</source>
        <translation>%1 konnte nicht durchsucht werden: %2.</translation>
    </message>
    <message>
        <source>%1 could not be read: %2.</source>
        <translation>%1 konnte nicht gelesen werden: %2.</translation>
    </message>
    <message>
        <source>This machine has no network address, so no media server can be reached, and there is no %1.</source>
        <translation>Dieser Rechner hat keine Netzwerkadresse, also ist kein Medienserver erreichbar, auch nicht %1.</translation>
    </message>
    <message>
        <source>This machine has no network address, so no media server can be reached.</source>
        <translation>Dieser Rechner hat keine Netzwerkadresse, also ist kein Medienserver erreichbar.</translation>
    </message>
    <message>
        <source>No media server has shown up, and there is no %1.</source>
        <translation>Kein Medienserver hat sich gemeldet, auch nicht %1.</translation>
    </message>
    <message>
        <source>No media server has shown up.</source>
        <translation>Kein Medienserver hat sich gemeldet.</translation>
    </message>
    <message>
        <source>Connect it to the network; &quot;orka doctor&quot; checks every part.</source>
        <translation>Verbinden Sie ihn mit dem Netzwerk; &quot;orka doctor&quot; prüft jeden Teil.</translation>
    </message>
    <message>
        <source>Start one on this network, name its address with --server, or give it more time with --wait; &quot;orka doctor&quot; checks every part.</source>
        <translation>Starten Sie einen in diesem Netzwerk, nennen Sie seine Adresse mit --server oder geben Sie ihm mit --wait mehr Zeit; &quot;orka doctor&quot; prüft jeden Teil.</translation>
    </message>
    <message>
        <source>The page can&apos;t be served, since %1 can&apos;t be started: %2. Install the program again, as a whole.</source>
        <translation>Die Seite kann nicht angeboten werden, da %1 sich nicht starten lässt: %2. Installieren Sie das Programm erneut, und zwar ganz.</translation>
    </message>
    <message>
        <source>There is no plug-in %1. Build or install it, or name another with --plugin FILE.</source>
        <translation>Ein Plug-in %1 gibt es nicht. Bauen oder installieren Sie es oder nennen Sie mit --plugin DATEI ein anderes.</translation>
    </message>
    <message>
        <source>%1 is no file, so it can&apos;t be a plug-in. Name the library itself, a file that ends in .so.</source>
        <translation>%1 ist keine Datei, kann also kein Plug-in sein. Nennen Sie die Bibliothek selbst, eine Datei, die auf .so endet.</translation>
    </message>
    <message>
        <source>The plug-in %1 may not be read. Give yourself the right to read it, or name another.</source>
        <translation>Das Plug-in %1 darf nicht gelesen werden. Geben Sie sich das Leserecht oder nennen Sie ein anderes.</translation>
    </message>
    <message>
        <source>%1 can&apos;t be loaded as a plug-in: the file is cut off. Copy or build it again.</source>
        <translation>%1 lässt sich nicht als Plug-in laden: Die Datei ist abgeschnitten. Kopieren oder bauen Sie sie erneut.</translation>
    </message>
    <message>
        <source>%1 can&apos;t be loaded as a plug-in: %2. It is no library for this machine, or something that it needs is missing.</source>
        <translation>%1 lässt sich nicht als Plug-in laden: %2. Es ist keine Bibliothek für diesen Rechner, oder etwas, das sie braucht, fehlt.</translation>
    </message>
    <message>
        <source>%1 is a library but no plug-in: it doesn&apos;t export worker_create. Name a worker&apos;s library.</source>
        <translation>%1 ist eine Bibliothek, aber kein Plug-in: Sie exportiert worker_create nicht. Nennen Sie die Bibliothek eines Workers.</translation>
    </message>
    <message>
        <source>The plug-in %1 was loaded, but its worker_create gave no worker. Run the command again with -vvv to see why.</source>
        <translation>Das Plug-in %1 wurde geladen, aber sein worker_create lieferte keinen Worker. Führen Sie den Befehl mit -vvv erneut aus, um den Grund zu sehen.</translation>
    </message>
    <message>
        <source>Ending the media service</source>
        <translation>Beende den Mediendienst</translation>
    </message>
    <message>
        <source>The media service %1 was told to end and doesn&apos;t. End the process.</source>
        <translation>Der Mediendienst %1 soll enden und tut es nicht. Beenden Sie den Prozess.</translation>
    </message>
    <message>
        <source>the bus %1</source>
        <translation>Bus %1</translation>
    </message>
    <message>
        <source>The media service %1 isn&apos;t the bridge of this program, so it is left alone. End it as it was started.</source>
        <translation>Der Mediendienst %1 ist nicht die Brücke dieses Programms und wird daher in Ruhe gelassen. Beenden Sie ihn so, wie er gestartet wurde.</translation>
    </message>
    <message>
        <source>it is no folder</source>
        <translation>es ist kein Ordner</translation>
    </message>
    <message>
        <source>it belongs to another user</source>
        <translation>der Ordner gehört einem anderen Benutzer</translation>
    </message>
    <message>
        <source>other users may use it</source>
        <translation>andere Benutzer haben Zugriff darauf</translation>
    </message>
    <message>
        <source>The media service can&apos;t be kept in %1: %2. Remove that, or set XDG_RUNTIME_DIR to a folder of your own, or do without with --linger 0.</source>
        <translation>Der Mediendienst kann nicht in %1 bleiben: %2. Entfernen Sie das, setzen Sie XDG_RUNTIME_DIR auf einen eigenen Ordner oder verzichten Sie mit --linger 0 darauf.</translation>
    </message>
    <message>
        <source>The media service can&apos;t be kept in %1: %2. Set XDG_RUNTIME_DIR to a folder of your own, or do without with --linger 0.</source>
        <translation>Der Mediendienst kann nicht in %1 bleiben: %2. Setzen Sie XDG_RUNTIME_DIR auf einen eigenen Ordner oder verzichten Sie mit --linger 0 darauf.</translation>
    </message>
    <message>
        <source>%1 was answered with an error: %2.</source>
        <translation>%1 wurde mit einem Fehler beantwortet: %2.</translation>
    </message>
    <message>
        <source>No answer about %1 came in %2 s: the media server or the media service hangs, or the work takes longer. Try again with a longer --timeout.</source>
        <translation>Zu %1 kam in %2 s keine Antwort: Der Medienserver oder der Mediendienst hängt, oder die Arbeit dauert länger. Versuchen Sie es mit längerem --timeout erneut.</translation>
    </message>
    <message>
        <source>The worker can&apos;t be mounted under the prefix %1: another has it. Choose one with --prefix.</source>
        <translation>Der Worker lässt sich nicht unter dem Präfix %1 einhängen: Ein anderer hat es. Wählen Sie mit --prefix eines.</translation>
    </message>
    <message>
        <source>The media server %1</source>
        <translation>Der Medienserver %1</translation>
    </message>
    <message>
        <source>The media server of %1</source>
        <translation>Der Medienserver von %1</translation>
    </message>
    <message>
        <source>the list of media servers</source>
        <translation>der Liste der Medienserver</translation>
    </message>
    <message>
        <source>%1 could not be read: its media server answers, but not about this in time.</source>
        <translation>%1 konnte nicht gelesen werden: Der Medienserver antwortet, aber dazu nicht rechtzeitig.</translation>
    </message>
    <message>
        <source>Reading a node</source>
        <translation>Lese einen Knoten</translation>
    </message>
    <message>
        <source>The media server %1 is listed, but can&apos;t be reached: %2.</source>
        <translation>Der Medienserver %1 ist aufgeführt, aber nicht erreichbar: %2.</translation>
    </message>
    <message>
        <source>The media server %1 is listed, but does not answer. It may be busy, asleep or switched off.</source>
        <translation>Der Medienserver %1 ist aufgeführt, antwortet aber nicht. Er ist vielleicht beschäftigt, im Ruhezustand oder ausgeschaltet.</translation>
    </message>
    <message>
        <source>Nothing can be asked: %1 takes the connection but doesn&apos;t answer. End it (&quot;orka stop&quot; ends a private bus of ours), or name another with --bus.</source>
        <translation>Es lässt sich nichts erfragen: Der Bus nimmt die Verbindung an, antwortet aber nicht (%1). Beenden Sie ihn (&quot;orka stop&quot; beendet einen eigenen privaten Bus) oder nennen Sie mit --bus einen anderen.</translation>
    </message>
    <message>
        <source>The certificate for HTTPS can&apos;t be had: %1. Name one with --cert FILE and --key FILE.</source>
        <translation>Das Zertifikat für HTTPS ist nicht zu bekommen: %1. Nennen Sie eines mit --cert DATEI und --key DATEI.</translation>
    </message>
    <message>
        <source>%1 can&apos;t be written: %2</source>
        <translation>%1 lässt sich nicht schreiben: %2</translation>
    </message>
    <message>
        <source>it is no IP address</source>
        <translation>es ist keine IP-Adresse</translation>
    </message>
    <message>
        <source>The page can&apos;t be served at %1, port %2: %3. Name another with --listen ADDRESS and --port N.</source>
        <translation>Die Seite kann nicht unter %1, Port %2 angeboten werden: %3. Nennen Sie mit --listen ADRESSE und --port N etwas anderes.</translation>
    </message>
    <message>
        <source>%1 is no IP address.</source>
        <translation>%1 ist keine IP-Adresse.</translation>
    </message>
    <message>
        <source>The browser will say that it doesn&apos;t know this machine&apos;s certificate, which the program made itself. Accept it once.</source>
        <translation>Der Browser wird sagen, dass er das Zertifikat dieses Rechners nicht kennt, das das Programm selbst ausgestellt hat. Nehmen Sie es einmal an.</translation>
    </message>
    <message>
        <source>No browser could be started. Open the address by hand.</source>
        <translation>Es ließ sich kein Browser starten. Öffnen Sie die Adresse von Hand.</translation>
    </message>
    <message>
        <source>The page needs GLib&apos;s main loop, which QT_NO_GLIB switches off. Unset that variable.</source>
        <translation>Die Seite braucht die Hauptschleife von GLib, die QT_NO_GLIB ausschaltet. Entfernen Sie diese Variable.</translation>
    </message>
    <message>
        <source>The files of the page are not in %1. Install orka anew, or build it.</source>
        <translation>Die Dateien der Seite sind nicht in %1. Installieren Sie orka neu oder bauen Sie es.</translation>
    </message>
    <message>
        <source>%1 can&apos;t be read (%2)</source>
        <translation>%1 ist nicht lesbar (%2)</translation>
    </message>
    <message>
        <source>no more than %1 are looked at, and so many are kept already. Take one away with &quot;orka servers --forget ADDRESS&quot;</source>
        <translation>mehr als %1 werden nicht angesehen, und so viele sind schon gemerkt. Mit &quot;orka servers --forget ADRESSE&quot; nehmen Sie eine heraus</translation>
    </message>
    <message>
        <source>No more than %1 addresses are looked at; these are left out: %2. &quot;orka servers --forget ADDRESS&quot; takes one away.</source>
        <translation>Mehr als %1 Adressen werden nicht angesehen; diese sind ausgelassen: %2. Mit &quot;orka servers --forget ADRESSE&quot; nehmen Sie eine heraus.</translation>
    </message>
    <message>
        <source>The addresses in %1 can&apos;t be written: %2.</source>
        <translation>Die Adressen in %1 lassen sich nicht schreiben: %2.</translation>
    </message>
    <message>
        <source>Waiting for another command</source>
        <translation>Warte auf einen anderen Befehl</translation>
    </message>
    <message>
        <source>another command has been at it for %1 s. Try again when it has ended</source>
        <translation>ein anderer Befehl ist seit %1 s damit beschäftigt. Versuchen Sie es erneut, wenn er beendet ist</translation>
    </message>
    <message>
        <source>The addresses in %1 can&apos;t be read. Give yourself the right to read it, or remove it.</source>
        <translation>Die Adressen in %1 sind nicht lesbar. Geben Sie sich das Leserecht oder entfernen Sie die Datei.</translation>
    </message>
    <message>
        <source>The addresses in %1 take more than 1 MB, which is more than is read. Shorten the file, or remove it.</source>
        <translation>Die Adressen in %1 umfassen mehr als 1 MB, und so viel wird nicht gelesen. Kürzen Sie die Datei oder entfernen Sie sie.</translation>
    </message>
    <message>
        <source>The media service has not said in time what is at %1. Try again with a longer --timeout.</source>
        <translation>Der Mediendienst hat nicht rechtzeitig gesagt, was unter %1 ist. Versuchen Sie es mit längerem --timeout erneut.</translation>
    </message>
    <message>
        <source>The media service left before it had looked at %1. Run the command again.</source>
        <translation>Der Mediendienst ging, bevor er unter %1 nachgesehen hatte. Führen Sie den Befehl erneut aus.</translation>
    </message>
    <message>
        <source>This media service can&apos;t be told to look at %1: %2. The bridge can: --media-service bridge.</source>
        <translation>Diesem Mediendienst lässt sich nicht sagen, dass er unter %1 nachsehen soll: %2. Die Brücke kann das: --media-service bridge.</translation>
    </message>
    <message>
        <source>%1 on %2</source>
        <comment>an interface</comment>
        <translation>%1 an %2</translation>
    </message>
    <message>
        <source>the session bus</source>
        <translation>Sitzungsbus</translation>
    </message>
    <message>
        <source>the system bus</source>
        <translation>Systembus</translation>
    </message>
    <message>
        <source>the bus at %1</source>
        <translation>Bus unter %1</translation>
    </message>
    <message>
        <source>it took longer than %L1 s</source>
        <translation>es dauerte länger als %L1 s</translation>
    </message>
    <message>
        <source>There is no media service, since %1 can&apos;t be reached: %2. Start the bus, or name another with --bus.</source>
        <translation>Es gibt keinen Mediendienst, da der Bus nicht erreichbar ist (%1): %2. Starten Sie den Bus oder nennen Sie mit --bus einen anderen.</translation>
    </message>
    <message>
        <source>nothing on it owns or can be started as %1</source>
        <translation>nichts hat dort den Namen %1 oder lässt sich so starten</translation>
    </message>
    <message>
        <source>starting %1 failed: %2</source>
        <translation>der Start von %1 scheiterte: %2</translation>
    </message>
    <message>
        <source>On %1, %2. The bridge of this program is used instead.</source>
        <translation>%1: %2. Stattdessen wird die Brücke dieses Programms verwendet.</translation>
    </message>
    <message>
        <source>There is no media service on %1: %2. Start one (orka-media-bridge, or dLeyna where it is packaged), or leave --media-service session out.</source>
        <translation>Auf dem Bus gibt es keinen Mediendienst (%1): %2. Starten Sie einen (orka-media-bridge oder dLeyna, wo es als Paket vorliegt) oder lassen Sie --media-service session weg.</translation>
    </message>
    <message>
        <source>The bridge can&apos;t be started on %1: another program has the name %2 there. Leave --media-service bridge out to use that one.</source>
        <translation>Die Brücke lässt sich auf dem Bus nicht starten (%1): Ein anderes Programm hat dort den Namen %2. Lassen Sie --media-service bridge weg, um dieses zu verwenden.</translation>
    </message>
    <message>
        <source>the private bus of this user</source>
        <translation>privater Bus dieses Benutzers</translation>
    </message>
    <message>
        <source>Starting the media service</source>
        <translation>Starte den Mediendienst</translation>
    </message>
    <message>
        <source>a private bus of ours</source>
        <translation>eigener privater Bus</translation>
    </message>
    <message>
        <source>The private bus at %1 was started but can&apos;t be reached: %2. Name a bus with --bus ADDRESS.</source>
        <translation>Der private Bus unter %1 wurde gestartet, ist aber nicht erreichbar: %2. Nennen Sie einen Bus mit --bus ADRESSE.</translation>
    </message>
    <message>
        <source>No media service is running on %1.</source>
        <translation>Auf dem Bus läuft kein Mediendienst (%1).</translation>
    </message>
    <message>
        <source>The connection to %1 has ended, so no media service can come back. Run the command again when the bus is there.</source>
        <translation>Die Verbindung zum Bus ist beendet (%1), also kann kein Mediendienst zurückkommen. Führen Sie den Befehl erneut aus, wenn der Bus da ist.</translation>
    </message>
    <message>
        <source>Asking the media service</source>
        <translation>Frage den Mediendienst</translation>
    </message>
    <message>
        <source>The media service does not answer: %1 has the name %2 on %3. &quot;orka stop&quot; ends it.</source>
        <translation>Der Mediendienst antwortet nicht: %1 hat den Namen %2 (%3). &quot;orka stop&quot; beendet ihn.</translation>
    </message>
    <message>
        <source>The media service does not answer: %1 has the name %2 on %3. End it, or start it again.</source>
        <translation>Der Mediendienst antwortet nicht: %1 hat den Namen %2 (%3). Beenden Sie ihn oder starten Sie ihn neu.</translation>
    </message>
    <message>
        <source>The media service has left %1: it crashed or was stopped. What was asked of it is lost; run the command again, which starts a new one where none is there.</source>
        <translation>Der Mediendienst hat den Bus verlassen (%1): Er ist abgestürzt oder wurde beendet. Was er gefragt wurde, ist verloren; führen Sie den Befehl erneut aus, der einen neuen startet, wo keiner ist.</translation>
    </message>
    <message>
        <source>The file %1 can&apos;t be used: %2. Remove it, or do without with --linger 0.</source>
        <translation>Die Datei %1 lässt sich nicht verwenden: %2. Entfernen Sie sie oder verzichten Sie mit --linger 0 darauf.</translation>
    </message>
    <message>
        <source>The name %1 is too long for a socket. Name a shorter folder in XDG_RUNTIME_DIR, or do without with --linger 0.</source>
        <translation>Der Name %1 ist zu lang für ein Socket. Nennen Sie in XDG_RUNTIME_DIR einen kürzeren Ordner oder verzichten Sie mit --linger 0 darauf.</translation>
    </message>
    <message>
        <source>The media service can&apos;t be kept, since its bus belongs at %1 and something else is there. Remove that, or do without with --linger 0.</source>
        <translation>Der Mediendienst kann nicht bleiben, da sein Bus nach %1 gehört und dort etwas anderes ist. Entfernen Sie das oder verzichten Sie mit --linger 0 darauf.</translation>
    </message>
    <message>
        <source>The media service could not be started: a program that isn&apos;t ours holds the file %1. End that, or do without with --linger 0.</source>
        <translation>Der Mediendienst konnte nicht gestartet werden: Ein fremdes Programm hält die Datei %1. Beenden Sie es oder verzichten Sie mit --linger 0 darauf.</translation>
    </message>
    <message>
        <source>The media service could not be started: an earlier one neither answers nor ends (process %1). &quot;orka stop&quot; ends it.</source>
        <translation>Der Mediendienst konnte nicht gestartet werden: Ein früherer antwortet weder, noch endet er (Prozess %1). &quot;orka stop&quot; beendet ihn.</translation>
    </message>
    <message>
        <source>%1 doesn&apos;t search below %2: it doesn&apos;t find %3, which is there. Search the whole media server, or a folder further down.</source>
        <translation>%1 sucht nicht unter %2: %3 ist dort und wird nicht gefunden. Suchen Sie im ganzen Medienserver oder in einem Ordner weiter unten.</translation>
    </message>
    <message>
        <source>The media service %1 could not be started: no program that you may run is there. Name another with --bridge.</source>
        <translation>Der Mediendienst %1 konnte nicht gestartet werden: Dort ist kein Programm, das Sie ausführen dürfen. Nennen Sie mit --bridge ein anderes.</translation>
    </message>
    <message>
        <source>(isn&apos;t there)</source>
        <translation>(nicht vorhanden)</translation>
    </message>
    <message>
        <source>The connection to %1 has ended: the bus crashed or was stopped. What was asked of the media service is lost; run the command again when the bus is back. A private bus is started anew.</source>
        <translation>Die Verbindung zum Bus ist beendet (%1): Er ist abgestürzt oder wurde angehalten. Was der Mediendienst gefragt wurde, ist verloren; führen Sie den Befehl erneut aus, wenn der Bus wieder da ist. Ein privater Bus wird neu gestartet.</translation>
    </message>
    <message>
        <source>the key is not that of the certificate</source>
        <translation>der Schlüssel gehört nicht zum Zertifikat</translation>
    </message>
    <message>
        <source>The certificate %1 has expired, and browsers say so. Name another with --cert.</source>
        <translation>Das Zertifikat %1 ist abgelaufen, was Browser bemängeln. Nennen Sie ein anderes mit --cert.</translation>
    </message>
    <message>
        <source>--key is the key of the certificate that --cert names.</source>
        <translation>--key ist der Schlüssel des Zertifikats, das --cert nennt.</translation>
    </message>
    <message>
        <source>HTTPS is spoken beyond loopback alone: name an address for it with --listen, or leave --cert out.</source>
        <translation>HTTPS wird nur jenseits von Loopback gesprochen: Nennen Sie dafür mit --listen eine Adresse, oder lassen Sie --cert weg.</translation>
    </message>
    <message>
        <source>The media server &quot;%1&quot; was there before, at %2, but does not answer now</source>
        <translation>Der Medienserver &quot;%1&quot; war früher da, unter %2, antwortet jetzt aber nicht</translation>
    </message>
    <message>
        <source>The media server &quot;%1&quot; is there, at %2, but is not heard, neither announcing itself nor answering the search: multicast doesn&apos;t get through, or a firewall drops the answers</source>
        <translation>Der Medienserver &quot;%1&quot; ist da, unter %2, aber nicht zu hören: Weder meldet er sich, noch antwortet er auf die Suche. Multicast kommt nicht durch, oder eine Firewall verwirft die Antworten</translation>
    </message>
    <message>
        <source>The network has just come up or changed, and media servers are still being searched for</source>
        <translation>Das Netzwerk ist eben erst da oder hat sich geändert, und Medienserver werden noch gesucht</translation>
    </message>
    <message>
        <source>A media server at %1 has announced itself and not described itself yet</source>
        <translation>Ein Medienserver unter %1 hat sich gemeldet, aber noch nicht beschrieben</translation>
    </message>
    <message>
        <source>%1 media servers at %2 have announced themselves and not described themselves yet</source>
        <translation>%1 Medienserver unter %2 haben sich gemeldet, aber noch nicht beschrieben</translation>
    </message>
    <message>
        <source>Media servers can&apos;t be heard at %1 (%2)</source>
        <translation>Medienserver sind über %1 nicht zu hören (%2)</translation>
    </message>
    <message>
        <source>The media server %1, heard from %2, keeps its description at %3, which is no http:// address of its own and isn&apos;t asked</source>
        <translation>Der Medienserver %1, der sich von %2 meldet, hat seine Beschreibung unter %3; das ist keine http://-Adresse von ihm selbst und wird nicht abgefragt</translation>
    </message>
    <message>
        <source>Media servers can&apos;t be remembered in %1 (%2): one that is off at the next start won&apos;t be missed</source>
        <translation>Medienserver lassen sich nicht in %1 merken (%2): Einer, der beim nächsten Start aus ist, wird nicht vermisst</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no address of a media server: %2</source>
        <translation>&quot;%1&quot; ist keine Adresse eines Medienservers: %2</translation>
    </message>
    <message>
        <source>give a host (nas, 10.0.0.2), a host and its port (nas:8200) or the URL of a description (http://nas:8200/rootDesc.xml)</source>
        <translation>Nennen Sie einen Rechner (nas, 10.0.0.2), einen Rechner und seinen Port (nas:8200) oder die URL einer Beschreibung (http://nas:8200/rootDesc.xml)</translation>
    </message>
    <message>
        <source>media servers are asked over http:// alone</source>
        <translation>Medienserver werden nur über http:// gefragt</translation>
    </message>
    <message>
        <source>media servers are asked without a user name; leave it out</source>
        <translation>Medienserver werden ohne Benutzernamen gefragt; lassen Sie ihn weg</translation>
    </message>
    <message>
        <source>ports go from 1 to 65535</source>
        <translation>Ports gehen von 1 bis 65535</translation>
    </message>
    <message>
        <source>it is good on one link only; name the network interface, as in &quot;fe80::1%eth0&quot;</source>
        <translation>Sie gilt nur an einem Anschluss; nennen Sie die Netzwerkschnittstelle wie in &quot;fe80::1%eth0&quot;</translation>
    </message>
    <message>
        <source>only addresses that begin with fe80 have a network interface (%); leave it out</source>
        <translation>Nur Adressen, die mit fe80 beginnen, haben eine Netzwerkschnittstelle (%); lassen Sie sie weg</translation>
    </message>
    <message>
        <source>Servers are looked for at %1 addresses already; forget one of them first</source>
        <translation>Server werden schon unter %1 Adressen gesucht; vergessen Sie erst eine davon</translation>
    </message>
    <message>
        <source>A media server at %1 has not answered yet; it is still looked for</source>
        <translation>Ein Medienserver unter %1 hat noch nicht geantwortet; er wird weiter gesucht</translation>
    </message>
    <message>
        <source>The name &quot;%1&quot; can&apos;t be resolved (%2)</source>
        <translation>Der Name &quot;%1&quot; lässt sich nicht auflösen (%2)</translation>
    </message>
    <message>
        <source>no answer within 5 s</source>
        <translation>keine Antwort in 5 s</translation>
    </message>
    <message>
        <source>The name &quot;%1&quot; stands for %2, which is good on one link only; name its network interface, as in &quot;%3&quot;</source>
        <translation>Der Name &quot;%1&quot; steht für %2, was nur an einem Anschluss gilt; nennen Sie dessen Netzwerkschnittstelle wie in &quot;%3&quot;</translation>
    </message>
    <message>
        <source>There is no network interface &quot;%1&quot; now, on which %2 could be reached</source>
        <translation>Es gibt jetzt keine Netzwerkschnittstelle &quot;%1&quot;, über die %2 zu erreichen wäre</translation>
    </message>
    <message>
        <source>No search can be sent to %1 (%2)</source>
        <translation>An %1 lässt sich keine Suche senden (%2)</translation>
    </message>
    <message>
        <source>The media server at %1 keeps its description at %2, which is no http:// address of its own and isn&apos;t asked; name that URL itself if it begins with http://</source>
        <translation>Der Medienserver unter %1 hat seine Beschreibung unter %2; das ist keine http://-Adresse von ihm selbst und wird nicht abgefragt. Beginnt sie mit http://, nennen Sie diese URL selbst</translation>
    </message>
    <message>
        <source>Nothing answered the search at %1, port 1900, and of the usual descriptions %2; if a media server runs there, name its port, as in &quot;%3&quot;, or the URL of its description</source>
        <translation>Auf die Suche unter %1, Port 1900, antwortete nichts, und von den üblichen Beschreibungen gilt: %2. Läuft dort ein Medienserver, nennen Sie seinen Port wie in &quot;%3&quot; oder die URL seiner Beschreibung</translation>
    </message>
    <message>
        <source>%1 describes &quot;%2&quot;, which is no media server: it has no content directory</source>
        <translation>%1 beschreibt &quot;%2&quot;, das kein Medienserver ist: Es hat kein Inhaltsverzeichnis</translation>
    </message>
    <message>
        <source>%1 describes &quot;%2&quot;, whose content directory is at another machine, which isn&apos;t asked</source>
        <translation>%1 beschreibt &quot;%2&quot;, dessen Inhaltsverzeichnis auf einem anderen Rechner liegt, der nicht gefragt wird</translation>
    </message>
    <message>
        <source>%1 describes &quot;%2&quot;, which has no UDN</source>
        <translation>%1 beschreibt &quot;%2&quot;, das keine UDN hat</translation>
    </message>
    <message>
        <source>%1 gives no description, but the HTTP status %2</source>
        <translation>%1 liefert keine Beschreibung, sondern den HTTP-Status %2</translation>
    </message>
    <message>
        <source>%1 is no description of a device</source>
        <translation>%1 ist keine Gerätebeschreibung</translation>
    </message>
    <message>
        <source>%1 doesn&apos;t describe %2</source>
        <translation>%1 beschreibt nicht %2</translation>
    </message>
    <message>
        <source>Nobody listens at %1, the address for calls of &quot;%2&quot;</source>
        <translation>Unter %1, der Adresse für Aufrufe von &quot;%2&quot;, ist niemand zu erreichen</translation>
    </message>
    <message>
        <source>%1 was forgotten meanwhile</source>
        <translation>%1 wurde inzwischen vergessen</translation>
    </message>
    <message>
        <source>%1 is no longer announced</source>
        <translation>%1 wird nicht mehr gemeldet</translation>
    </message>
    <message>
        <source>the media server &quot;%1&quot; did not answer within %2 seconds. It may be busy or hanging; try again, or restart it</source>
        <translation>der Medienserver &quot;%1&quot; antwortete nicht innerhalb von %2 Sekunden. Vielleicht ist er beschäftigt oder hängt; versuchen Sie es noch einmal oder starten Sie ihn neu</translation>
    </message>
    <message>
        <source>Could not connect to the media server &quot;%1&quot;: %2</source>
        <translation>keine Verbindung zum Medienserver &quot;%1&quot;: %2</translation>
    </message>
    <message>
        <source>The connection to the media server &quot;%1&quot; broke: %2</source>
        <translation>Die Verbindung zum Medienserver &quot;%1&quot; riss ab: %2</translation>
    </message>
    <message>
        <source>The answer of the media server &quot;%1&quot; is too large: %2</source>
        <translation>Die Antwort des Medienservers &quot;%1&quot; ist zu groß: %2</translation>
    </message>
    <message>
        <source>The answer of the media server &quot;%1&quot; can&apos;t be read (HTTP status %2)</source>
        <translation>Die Antwort des Medienservers &quot;%1&quot; ist nicht lesbar (HTTP-Status %2)</translation>
    </message>
    <message>
        <source>its answer isn&apos;t HTTP</source>
        <translation>seine Antwort ist kein HTTP</translation>
    </message>
    <message>
        <source>its answer is packed</source>
        <translation>seine Antwort ist gepackt</translation>
    </message>
    <message>
        <source>its head is longer than %1 KiB</source>
        <translation>ihr Kopf ist länger als %1 KiB</translation>
    </message>
    <message>
        <source>it is longer than %1 KiB</source>
        <translation>sie ist länger als %1 KiB</translation>
    </message>
    <message>
        <source>it begins over and over</source>
        <translation>sie beginnt immer wieder von vorn</translation>
    </message>
    <message>
        <source>too many long answers come at once</source>
        <translation>zu viele lange Antworten kommen zugleich</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a URL</source>
        <translation>&quot;%1&quot; ist keine URL</translation>
    </message>
    <message>
        <source>The list that &quot;%1&quot; sent can&apos;t be read</source>
        <translation>Die Liste, die &quot;%1&quot; geschickt hat, ist nicht lesbar</translation>
    </message>
    <message>
        <source>The list was not complete after 20 seconds (%1 objects so far). Ask for fewer objects at a time</source>
        <translation>Die Liste war nach 20 Sekunden nicht vollständig (bis dahin %1 Objekte). Verlangen Sie weniger Objekte auf einmal</translation>
    </message>
    <message>
        <source>&quot;%1&quot; counts %2 objects here, but none came behind the first %3</source>
        <translation>&quot;%1&quot; zählt hier %2 Objekte, aber nach den ersten %3 kam keines</translation>
    </message>
    <message>
        <source>&quot;%1&quot; counts %2 objects here, but only %3 came. Ask for a range to get those</source>
        <translation>&quot;%1&quot; zählt hier %2 Objekte, aber nur %3 kamen. Verlangen Sie einen Bereich, um diese zu bekommen</translation>
    </message>
    <message>
        <source>The server described no object</source>
        <translation>Der Server beschrieb kein Objekt</translation>
    </message>
    <message>
        <source>Too many long lists are asked for at once. Try again when the others are answered, or ask for fewer objects at a time</source>
        <translation>Zu viele lange Listen werden zugleich verlangt. Versuchen Sie es noch einmal, wenn die anderen beantwortet sind, oder verlangen Sie weniger Objekte auf einmal</translation>
    </message>
    <message>
        <source>Too many calls at once: wait for the answers of those that are under way</source>
        <translation>Zu viele Aufrufe zugleich: Warten Sie, bis die laufenden beantwortet sind</translation>
    </message>
    <message>
        <source>The answer is too long for one D-Bus message (%1 MiB). Ask for fewer objects at a time, or for fewer properties</source>
        <translation>Die Antwort ist zu lang für eine D-Bus-Nachricht (%1 MiB). Verlangen Sie weniger Objekte auf einmal oder weniger Eigenschaften</translation>
    </message>
    <message>
        <source>A query of %1 bytes is too long: %2 are allowed</source>
        <translation>Eine Suchanfrage von %1 Bytes ist zu lang: %2 sind erlaubt</translation>
    </message>
    <message>
        <source>Query string is not valid. It is too long or nested too deeply</source>
        <translation>Die Suchanfrage ist ungültig. Sie ist zu lang oder zu tief geschachtelt</translation>
    </message>
    <message>
        <source>Operation cancelled</source>
        <translation>Der Aufruf wurde abgebrochen</translation>
    </message>
    <message>
        <source>The media bridge gave the call up</source>
        <translation>Die Brücke gab den Aufruf auf</translation>
    </message>
    <message>
        <source>the server refused</source>
        <translation>der Server lehnte ab</translation>
    </message>
    <message>
        <source>Can&apos;t reach the D-Bus &quot;%1&quot;: %2. Start a bus (dbus-run-session does) or name one with --bus</source>
        <translation>Der D-Bus &quot;%1&quot; ist nicht zu erreichen: %2. Starten Sie einen Bus (etwa mit dbus-run-session) oder nennen Sie einen mit --bus</translation>
    </message>
    <message>
        <source>The bus doesn&apos;t give the name %1: %2</source>
        <translation>Der Bus vergibt den Namen %1 nicht: %2</translation>
    </message>
    <message>
        <source>Another media service is running: %1 is taken on this bus. Use that one, or stop it first</source>
        <translation>Ein anderer Mediendienst läuft: %1 ist auf diesem Bus vergeben. Nutzen Sie diesen oder beenden Sie ihn zuerst</translation>
    </message>
    <message>
        <source>The bus has gone away</source>
        <translation>Der Bus ist nicht mehr da</translation>
    </message>
    <message>
        <source>Another media service has taken the name</source>
        <translation>Ein anderer Mediendienst hat den Namen übernommen</translation>
    </message>
    <message>
        <source>Could not connect to %1: %2</source>
        <translation>keine Verbindung zu %1: %2</translation>
    </message>
    <message>
        <source>Connection refused</source>
        <translation>Verbindung abgelehnt</translation>
    </message>
    <message>
        <source>Connection terminated unexpectedly</source>
        <translation>Verbindung unerwartet beendet</translation>
    </message>
    <message>
        <source>Connection reset by peer</source>
        <translation>Verbindung von der Gegenseite beendet</translation>
    </message>
    <message>
        <source>Connection timed out</source>
        <translation>keine Antwort in der vorgesehenen Zeit</translation>
    </message>
    <message>
        <source>Socket I/O timed out</source>
        <translation>keine Antwort in der vorgesehenen Zeit</translation>
    </message>
    <message>
        <source>No route to host</source>
        <translation>kein Weg zum Rechner</translation>
    </message>
    <message>
        <source>Network is unreachable</source>
        <translation>Netzwerk nicht erreichbar</translation>
    </message>
    <message>
        <source>Name or service not known</source>
        <translation>Name unbekannt</translation>
    </message>
    <message>
        <source>Temporary failure in name resolution</source>
        <translation>Namen lassen sich derzeit nicht auflösen</translation>
    </message>
    <message>
        <source>Permission denied</source>
        <translation>keine Berechtigung</translation>
    </message>
    <message>
        <source>Read-only file system</source>
        <translation>Dateisystem nur lesbar</translation>
    </message>
    <message>
        <source>No space left on device</source>
        <translation>kein Platz mehr auf dem Gerät</translation>
    </message>
    <message>
        <source>%1 can&apos;t be read: its XML is cut off or broken</source>
        <translation>%1 ist nicht lesbar: Das XML ist abgeschnitten oder beschädigt</translation>
    </message>
    <message>
        <source>%1 (UPnP error %2)</source>
        <translation>%1 (UPnP-Fehler %2)</translation>
    </message>
    <message>
        <source>%1 doesn&apos;t answer</source>
        <translation>%1 antwortet nicht</translation>
    </message>
    <message>
        <source>%1 is listed, but can&apos;t be read: %2.</source>
        <translation>%1 ist aufgeführt, lässt sich aber nicht lesen: %2.</translation>
    </message>
    <message>
        <source>Failed to connect to socket %1: %2</source>
        <translation>keine Verbindung zum Socket %1: %2</translation>
    </message>
    <message>
        <source>No such file or directory</source>
        <translation>Datei oder Ordner nicht vorhanden</translation>
    </message>
    <message>
        <source>%1 was not readable (missing?)</source>
        <translation>%1 ist nicht lesbar (nicht vorhanden?)</translation>
    </message>
    <message>
        <source>unterminated object</source>
        <translation>nicht abgeschlossenes Objekt</translation>
    </message>
    <message>
        <source>unterminated array</source>
        <translation>nicht abgeschlossenes Array</translation>
    </message>
    <message>
        <source>unterminated string</source>
        <translation>nicht abgeschlossene Zeichenkette</translation>
    </message>
    <message>
        <source>missing name separator</source>
        <translation>Doppelpunkt fehlt</translation>
    </message>
    <message>
        <source>missing value separator</source>
        <translation>Komma fehlt</translation>
    </message>
    <message>
        <source>illegal value</source>
        <translation>ungültiger Wert</translation>
    </message>
    <message>
        <source>illegal number</source>
        <translation>ungültige Zahl</translation>
    </message>
    <message>
        <source>object is missing after a comma</source>
        <translation>nach einem Komma fehlt etwas</translation>
    </message>
    <message>
        <source>garbage at the end of the document</source>
        <translation>überzählige Zeichen am Ende</translation>
    </message>
    <message>
        <source>The entry %1 in %2 has no value.</source>
        <translation>Der Eintrag %1 in %2 hat keinen Wert.</translation>
    </message>
    <message>
        <source>The configuration file %1 takes more than 1 MB, which is more than is read. Shorten it.</source>
        <translation>Die Konfigurationsdatei %1 umfasst mehr als 1 MB, und so viel wird nicht gelesen. Kürzen Sie sie.</translation>
    </message>
    <message>
        <source>A list in the configuration file %1 has no end. Close it with a bracket.</source>
        <translation>Eine Liste in der Konfigurationsdatei %1 hat kein Ende. Schließen Sie sie mit einer Klammer.</translation>
    </message>
    <message>
        <source>it comes in too many small pieces</source>
        <translation>sie kommt in zu vielen kleinen Stücken</translation>
    </message>
    <message>
        <source>ADDRESS</source>
        <translation>ADRESSE</translation>
    </message>
    <message>
        <source>session|system|ADDRESS</source>
        <translation>session|system|ADRESSE</translation>
    </message>
    <message>
        <source>COMMAND</source>
        <translation>BEFEHL</translation>
    </message>
    <message>
        <source>FILE</source>
        <translation>DATEI</translation>
    </message>
    <message>
        <source>ID</source>
        <translation>KENNUNG</translation>
    </message>
    <message>
        <source>INT</source>
        <translation>ZAHL</translation>
    </message>
    <message>
        <source>PATH</source>
        <translation>PFAD</translation>
    </message>
    <message>
        <source>PLACE</source>
        <translation>ORT</translation>
    </message>
    <message>
        <source>SAMPLE</source>
        <translation>STICHPROBE</translation>
    </message>
    <message>
        <source>SECONDS</source>
        <translation>SEKUNDEN</translation>
    </message>
    <message>
        <source>orka ls &quot;My NAS/Music/All Music&quot; --rows 0-19
  orka ls -R --depth 2 &quot;My NAS&quot;</source>
        <translation>orka ls &quot;Mein NAS/Musik/Alle Titel&quot; --rows 0-19
  orka ls -R --depth 2 &quot;Mein NAS&quot;</translation>
    </message>
    <message>
        <source>orka info &quot;My NAS/Music/Albums/Blue/01 First Song&quot;</source>
        <translation>orka info &quot;Mein NAS/Musik/Alben/Blau/01 Erstes Lied&quot;</translation>
    </message>
    <message>
        <source>orka menu &quot;My NAS&quot;
  orka menu --context &quot;My NAS/Music/Albums/Blue&quot;</source>
        <translation>orka menu &quot;Mein NAS&quot;
  orka menu --context &quot;Mein NAS/Musik/Alben/Blau&quot;</translation>
    </message>
    <message>
        <source>orka sample &quot;My NAS/Music/All Music&quot; 0,9999,100</source>
        <translation>orka sample &quot;Mein NAS/Musik/Alle Titel&quot; 0,9999,100</translation>
    </message>
    <message>
        <source>orka queue &quot;My NAS/Music/Albums/Blue&quot; --format m3u8 &gt; blue.m3u8</source>
        <translation>orka queue &quot;Mein NAS/Musik/Alben/Blau&quot; --format m3u8 &gt; blau.m3u8</translation>
    </message>
    <message>
        <source>orka play &quot;My NAS/Music/Albums/Blue&quot;
  orka play --player &quot;mpv --shuffle&quot; &quot;My NAS&quot;</source>
        <translation>orka play &quot;Mein NAS/Musik/Alben/Blau&quot;
  orka play --player &quot;mpv --shuffle&quot; &quot;Mein NAS&quot;</translation>
    </message>
    <message>
        <source>orka search &quot;My NAS&quot; --artist abba --rows 0-19</source>
        <translation>orka search &quot;Mein NAS&quot; --artist abba --rows 0-19</translation>
    </message>
    <message>
        <source>%1 describes &quot;%2&quot;, whose content directory has a user name in its address and isn&apos;t asked</source>
        <translation>%1 beschreibt &quot;%2&quot;, dessen Inhaltsverzeichnis einen Benutzernamen in der Adresse hat und nicht gefragt wird</translation>
    </message>
    <message>
        <source>the media server &quot;%1&quot; asks for a password, which can&apos;t be given (HTTP status %2)</source>
        <translation>der Medienserver &quot;%1&quot; verlangt ein Passwort, das nicht angegeben werden kann (HTTP-Status %2)</translation>
    </message>
</context>
</TS>
