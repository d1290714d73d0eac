<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>BrokenFilesModel</name>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Reason</source>
        <translation>Grund</translation>
    </message>
    <message>
        <source>Files that couldn’t be read</source>
        <translation>Dateien, die nicht gelesen werden konnten</translation>
    </message>
    <message>
        <source>Files That Couldn’t Be Read</source>
        <translation>Nicht lesbare Dateien</translation>
    </message>
    <message>
        <source>They are tried again when they have changed. Everything else is in the library. Opening one shows its load log.</source>
        <translation>Sie werden erneut versucht, wenn sie sich geändert haben. Alles andere ist in der Bibliothek. Beim Öffnen einer Datei zeigt sich ihr Ladeprotokoll.</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>Ö&amp;ffnen</translation>
    </message>
</context>
<context>
    <name>ChatTitle</name>
    <message>
        <source>%1 to %2</source>
        <extracomment>&quot;FIRST DAY to LAST DAY&quot;</extracomment>
        <translation>%1 bis %2</translation>
    </message>
</context>
<context>
    <name>Commands</name>
    <message>
        <source>&amp;Clear Menu</source>
        <translation>Einträge &amp;löschen</translation>
    </message>
    <message>
        <source>Find iChat Files …</source>
        <translation>iChat-Dateien suchen …</translation>
    </message>
    <message>
        <source>&amp;Open …</source>
        <translation>Ö&amp;ffnen …</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>Zuletzt &amp;geöffnet</translation>
    </message>
    <message>
        <source>Pre&amp;ferences …</source>
        <translation>&amp;Einstellungen …</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>S&amp;chließen</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>%1 &amp;Help</source>
        <translation>%1-&amp;Hilfe</translation>
    </message>
    <message>
        <source>About %1 …</source>
        <translation>Über %1 …</translation>
    </message>
    <message>
        <source>Report Bug …</source>
        <translation>Fehler melden …</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>&amp;Fenster</translation>
    </message>
    <message>
        <source>&amp;Library</source>
        <translation>&amp;Bibliothek</translation>
    </message>
</context>
<context>
    <name>ContactsDialog</name>
    <message>
        <source>• the desktop’s address books (Evolution)</source>
        <translation>• die Adressbücher des Systems (Evolution)</translation>
    </message>
    <message>
        <source>Vell would like to read your contacts to show names and pictures instead of chat addresses.</source>
        <translation>Vell möchte Ihre Kontakte lesen, um Namen und Bilder statt Chat-Adressen anzuzeigen.</translation>
    </message>
    <message>
        <source>Vell would read:
%1

Nothing is written to them or sent anywhere. You can change this in the preferences.</source>
        <translation>Vell würde lesen:
%1

Nichts davon wird geändert oder irgendwohin gesendet. Sie können das in den Einstellungen ändern.</translation>
    </message>
    <message>
        <source>Don’t Allow</source>
        <translation>Nicht erlauben</translation>
    </message>
    <message>
        <source>Allow</source>
        <translation>Erlauben</translation>
    </message>
    <message>
        <source>Not Now</source>
        <translation>Nicht jetzt</translation>
    </message>
    <message>
        <source>Access to Your Contacts</source>
        <translation>Zugriff auf Ihre Kontakte</translation>
    </message>
</context>
<context>
    <name>Export</name>
    <message>
        <source>There is not enough memory</source>
        <translation>Der Arbeitsspeicher reicht nicht aus</translation>
    </message>
    <message>
        <source>Only %1 of %2 messages could be written</source>
        <translation>Nur %1 von %2 Nachrichten konnten geschrieben werden</translation>
    </message>
    <message>
        <source>Exported to “%2” (messages: %1)</source>
        <translation>Nach „%2“ exportiert (Nachrichten: %1)</translation>
    </message>
    <message>
        <source>Markdown</source>
        <translation>Markdown</translation>
    </message>
    <message>
        <source>Plain text</source>
        <translation>Reiner Text</translation>
    </message>
    <message>
        <source>Web page</source>
        <translation>Webseite</translation>
    </message>
    <message>
        <source>JSON, everything</source>
        <translation>JSON, alles</translation>
    </message>
    <message>
        <source>JSON Lines, for databases</source>
        <translation>JSON Lines, für Datenbanken</translation>
    </message>
    <message>
        <source>Table for spreadsheets</source>
        <translation>Tabelle für Tabellenkalkulationen</translation>
    </message>
    <message>
        <source>PDF, as on screen</source>
        <translation>PDF, wie am Bildschirm</translation>
    </message>
    <message>
        <source>The printer “%1” could not be used</source>
        <translation>Der Drucker „%1“ konnte nicht verwendet werden</translation>
    </message>
    <message>
        <source>Printed (pages: %1)</source>
        <translation>Gedruckt (Seiten: %1)</translation>
    </message>
    <message>
        <source>Print</source>
        <translation>Drucken</translation>
    </message>
    <message>
        <source>Printing …</source>
        <translation>Wird gedruckt …</translation>
    </message>
</context>
<context>
    <name>FoldersDialog</name>
    <message>
        <source>Library Folders</source>
        <translation>Ordner der Bibliothek</translation>
    </message>
    <message>
        <source>The library shows the transcripts in these folders and in all folders below them.</source>
        <translation>Die Bibliothek zeigt die Transkripte in diesen Ordnern und in allen Ordnern darunter.</translation>
    </message>
    <message>
        <source>&amp;Add Folder …</source>
        <translation>Ordner &amp;hinzufügen …</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <source>The files stay where they are</source>
        <translation>Die Dateien bleiben, wo sie sind</translation>
    </message>
</context>
<context>
    <name>JoinDialog</name>
    <message>
        <source>Join Addresses</source>
        <translation>Adressen zusammenführen</translation>
    </message>
    <message>
        <source>Who is the same person as %1?</source>
        <translation>Wer ist dieselbe Person wie %1?</translation>
    </message>
    <message>
        <source>Filter people</source>
        <translation>Personen filtern</translation>
    </message>
    <message>
        <source>People</source>
        <translation>Personen</translation>
    </message>
    <message>
        <source>&amp;Join</source>
        <translation>&amp;Zusammenführen</translation>
    </message>
</context>
<context>
    <name>Library</name>
    <message>
        <source>1 message</source>
        <translation>1 Nachricht</translation>
    </message>
    <message>
        <source>%1 messages</source>
        <translation>%1 Nachrichten</translation>
    </message>
</context>
<context>
    <name>Opening</name>
    <message>
        <source>Open Address</source>
        <translation>Adresse öffnen</translation>
    </message>
    <message>
        <source>The desktop could not open this address.</source>
        <translation>Das System konnte diese Adresse nicht öffnen.</translation>
    </message>
</context>
<context>
    <name>PatternSearch</name>
    <message>
        <source>nothing is known by this letter after “\”</source>
        <translation>dieser Buchstabe bedeutet nach „\“ nichts</translation>
    </message>
    <message>
        <source>there is no such property</source>
        <translation>diese Eigenschaft gibt es nicht</translation>
    </message>
    <message>
        <source>a parenthesis is missing</source>
        <translation>eine Klammer fehlt</translation>
    </message>
    <message>
        <source>a number is too large</source>
        <translation>eine Zahl ist zu groß</translation>
    </message>
    <message>
        <source>“{” needs numbers and “}”</source>
        <translation>zu „{“ gehören Zahlen und „}“</translation>
    </message>
    <message>
        <source>in “{ }” the first number is the larger one</source>
        <translation>in „{ }“ ist die erste Zahl die größere</translation>
    </message>
    <message>
        <source>there is no such group</source>
        <translation>diese Gruppe gibt es nicht</translation>
    </message>
    <message>
        <source>this can’t name a group</source>
        <translation>so kann keine Gruppe heißen</translation>
    </message>
    <message>
        <source>there is no such flag</source>
        <translation>diese Option gibt es nicht</translation>
    </message>
    <message>
        <source>what is looked for behind may have any length</source>
        <translation>was davor stehen soll, kann beliebig lang sein</translation>
    </message>
    <message>
        <source>“]” is missing</source>
        <translation>„]“ fehlt</translation>
    </message>
    <message>
        <source>a range in “[ ]” ends before it begins</source>
        <translation>ein Bereich in „[ ]“ endet vor seinem Anfang</translation>
    </message>
    <message>
        <source>it is too long</source>
        <translation>er ist zu lang</translation>
    </message>
    <message>
        <source>it is too deeply nested</source>
        <translation>er ist zu tief verschachtelt</translation>
    </message>
    <message>
        <source>this can’t stand here</source>
        <translation>das kann hier nicht stehen</translation>
    </message>
    <message>
        <source>%1 (character %2)</source>
        <extracomment>&quot;“]” is missing (character 7)&quot;</extracomment>
        <translation>%1 (Zeichen %2)</translation>
    </message>
</context>
<context>
    <name>SampleChat</name>
    <message>
        <source>Do you still have our old chats?</source>
        <translation>Hast du unsere alten Chats noch?</translation>
    </message>
    <message>
        <source>Every single one.</source>
        <translation>Jeden einzelnen.</translation>
    </message>
    <message>
        <source>With the pictures!</source>
        <translation>Mit den Bildern!</translation>
    </message>
    <message>
        <source>Then open one 😀</source>
        <translation>Dann öffne einen 😀</translation>
    </message>
    <message>
        <source>A conversation, as an example</source>
        <translation>Eine Unterhaltung als Beispiel</translation>
    </message>
</context>
<context>
    <name>Saving</name>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>“%1” could not be saved. %2. Choose another folder or name.</source>
        <translation>„%1“ konnte nicht gesichert werden. %2. Wählen Sie einen anderen Ordner oder Namen.</translation>
    </message>
    <message>
        <source>Save Picture</source>
        <translation>Bild sichern</translation>
    </message>
    <message>
        <source>Save File</source>
        <translation>Datei sichern</translation>
    </message>
    <message>
        <source>The folder could not be made</source>
        <translation>Der Ordner konnte nicht angelegt werden</translation>
    </message>
    <message>
        <source>The chat’s file has changed or is gone</source>
        <translation>Die Datei des Chats hat sich geändert oder ist verschwunden</translation>
    </message>
</context>
<context>
    <name>Timeline</name>
    <message>
        <source>File: %@</source>
        <translation>Datei: %@</translation>
    </message>
    <message>
        <source>Picture</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>Conversation</source>
        <translation>Unterhaltung</translation>
    </message>
    <message>
        <source>Chat “%1”</source>
        <extracomment>A heading above the messages of one file; %1 is the file&apos;s name.</extracomment>
        <translation>Chat „%1“</translation>
    </message>
</context>
<context>
    <name>Version</name>
    <message>
        <source>Version: %1 (%2)</source>
        <translation>Version: %1 (%2)</translation>
    </message>
</context>
<context>
    <name>vell</name>
    <message>
        <source>%1: %2, %3</source>
        <translation>%1: %2, %3</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
</context>
<context>
    <name>vell::Application</name>
    <message>
        <source>Standard Input</source>
        <translation>Standardeingabe</translation>
    </message>
    <message>
        <source>Open Transcripts</source>
        <translation>Mitschnitte öffnen</translation>
    </message>
    <message>
        <source>Transcripts (*.ichat)</source>
        <translation>Mitschnitte (*.ichat)</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
</context>
<context>
    <name>vell::ArchiveModel</name>
    <message>
        <source>object</source>
        <translation>Objekt</translation>
    </message>
    <message>
        <source>class</source>
        <translation>Klasse</translation>
    </message>
    <message>
        <source>text</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>integer</source>
        <translation>Ganzzahl</translation>
    </message>
    <message>
        <source>real</source>
        <translation>Kommazahl</translation>
    </message>
    <message>
        <source>boolean</source>
        <translation>Wahrheitswert</translation>
    </message>
    <message>
        <source>date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>data</source>
        <translation>Daten</translation>
    </message>
    <message>
        <source>reference</source>
        <translation>Verweis</translation>
    </message>
    <message>
        <source>array</source>
        <translation>Liste</translation>
    </message>
    <message>
        <source>set</source>
        <translation>Menge</translation>
    </message>
    <message>
        <source>dictionary</source>
        <translation>Zuordnung</translation>
    </message>
    <message>
        <source>struct</source>
        <translation>Struktur</translation>
    </message>
    <message>
        <source>null</source>
        <translation>null</translation>
    </message>
    <message>
        <source>invalid</source>
        <translation>ungültig</translation>
    </message>
    <message>
        <source>Values: %1</source>
        <translation>Werte: %1</translation>
    </message>
    <message>
        <source>at byte %1</source>
        <translation>bei Byte %1</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Typ</translation>
    </message>
    <message>
        <source>Byte</source>
        <translation>Byte</translation>
    </message>
</context>
<context>
    <name>vell::ArchivePane</name>
    <message>
        <source>Archive</source>
        <translation>Archiv</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>The archive can be read in part only.</source>
        <translation>Das Archiv ist nur zum Teil lesbar.</translation>
    </message>
    <message>
        <source>The archive can’t be read.</source>
        <translation>Das Archiv ist nicht lesbar.</translation>
    </message>
</context>
<context>
    <name>vell::ArchiveTool</name>
    <message>
        <source>Show A&amp;rchive</source>
        <translation>&amp;Archiv anzeigen</translation>
    </message>
</context>
<context>
    <name>vell::ArchiveView</name>
    <message>
        <source>Archive</source>
        <translation>Archiv</translation>
    </message>
    <message>
        <source>&amp;Go to Object</source>
        <translation>&amp;Gehe zum Objekt</translation>
    </message>
    <message>
        <source>&amp;Copy Value</source>
        <translation>Wert &amp;kopieren</translation>
    </message>
    <message>
        <source>&amp;Save Value As …</source>
        <translation>Wert &amp;speichern unter …</translation>
    </message>
    <message>
        <source>Save Value</source>
        <translation>Wert speichern</translation>
    </message>
</context>
<context>
    <name>vell::ChatFinder</name>
    <message>
        <source>Not a regular expression: %1.</source>
        <translation>Kein regulärer Ausdruck: %1.</translation>
    </message>
    <message>
        <source>The expression takes too long; some matches may be missing.</source>
        <translation>Der Ausdruck braucht zu lange; vielleicht fehlen Treffer.</translation>
    </message>
</context>
<context>
    <name>vell::ChatPane</name>
    <message>
        <source>Opening …</source>
        <translation>Wird geöffnet …</translation>
    </message>
    <message>
        <source>Font size: %1</source>
        <translation>Schriftgröße: %1</translation>
    </message>
    <message>
        <source>Font size: %1, shown as %2</source>
        <translation>Schriftgröße: %1, dargestellt als %2</translation>
    </message>
    <message>
        <source>&amp;Save Chat as Markdown …</source>
        <translation>Chat als Markdown &amp;sichern …</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Copy &amp;Whole Chat</source>
        <translation>&amp;Ganzen Chat kopieren</translation>
    </message>
    <message>
        <source>Select &amp;All</source>
        <translation>&amp;Alles auswählen</translation>
    </message>
    <message>
        <source>&amp;Find …</source>
        <translation>&amp;Suchen …</translation>
    </message>
    <message>
        <source>Find &amp;Next</source>
        <translation>&amp;Weitersuchen</translation>
    </message>
    <message>
        <source>Find &amp;Previous</source>
        <translation>&amp;Rückwärts weitersuchen</translation>
    </message>
    <message>
        <source>&amp;Show Fonts</source>
        <translation>Schriften &amp;zeigen</translation>
    </message>
    <message>
        <source>&amp;Bigger</source>
        <translation>&amp;Größer</translation>
    </message>
    <message>
        <source>S&amp;maller</source>
        <translation>&amp;Kleiner</translation>
    </message>
    <message>
        <source>P&amp;revious Session</source>
        <translation>Vor&amp;herige Sitzung</translation>
    </message>
    <message>
        <source>Ne&amp;xt Session</source>
        <translation>Nächste &amp;Sitzung</translation>
    </message>
    <message>
        <source>Copy Whole Chat</source>
        <translation>Ganzen Chat kopieren</translation>
    </message>
    <message>
        <source>The chat is too long to copy as a whole.</source>
        <translation>Der Chat ist zu lang, um als Ganzes kopiert zu werden.</translation>
    </message>
    <message>
        <source>As text it takes more than %1, far more than its file. Save it as Markdown or copy part of it.</source>
        <translation>Als Text braucht er mehr als %1, weit mehr als seine Datei. Sichern Sie ihn als Markdown oder kopieren Sie einen Teil davon.</translation>
    </message>
    <message>
        <source>Copied the whole chat: %1 characters</source>
        <translation>Ganzer Chat kopiert: %1 Zeichen</translation>
    </message>
    <message>
        <source>Copied %1 characters</source>
        <translation>%1 Zeichen kopiert</translation>
    </message>
    <message>
        <source>Copied %1 messages</source>
        <translation>%1 Nachrichten kopiert</translation>
    </message>
    <message>
        <source>What is selected is too long to copy.</source>
        <translation>Die Auswahl ist zu lang zum Kopieren.</translation>
    </message>
    <message>
        <source>As text it takes more than %1, far more than the chat’s file. Save the chat as Markdown or copy a smaller part of it.</source>
        <translation>Als Text braucht sie mehr als %1, weit mehr als die Datei des Chats. Sichern Sie den Chat als Markdown oder kopieren Sie einen kleineren Teil.</translation>
    </message>
    <message>
        <source>Save Chat as Markdown</source>
        <translation>Chat als Markdown sichern</translation>
    </message>
    <message>
        <source>Save a document that is far larger than the chat’s file?</source>
        <translation>Soll ein Dokument gesichert werden, das weit größer ist als die Datei des Chats?</translation>
    </message>
    <message>
        <source>As Markdown the chat takes more than %1.</source>
        <translation>Als Markdown braucht der Chat mehr als %1.</translation>
    </message>
    <message>
        <source>Chat</source>
        <translation>Chat</translation>
    </message>
    <message>
        <source>The chat could not be saved as “%1”.</source>
        <translation>Der Chat konnte nicht als „%1“ gesichert werden.</translation>
    </message>
    <message>
        <source>%1. Choose another folder or name.</source>
        <translation>%1. Wählen Sie einen anderen Ordner oder Namen.</translation>
    </message>
    <message>
        <source>There is no earlier session.</source>
        <translation>Es gibt keine frühere Sitzung.</translation>
    </message>
    <message>
        <source>There is no later session.</source>
        <translation>Es gibt keine spätere Sitzung.</translation>
    </message>
    <message>
        <source>&amp;Export …</source>
        <translation>E&amp;xportieren …</translation>
    </message>
    <message>
        <source>&amp;Print …</source>
        <translation>&amp;Drucken …</translation>
    </message>
    <message>
        <source>Nothing was written.</source>
        <translation>Es wurde nichts geschrieben.</translation>
    </message>
    <message>
        <source>Export Chat</source>
        <translation>Chat exportieren</translation>
    </message>
    <message>
        <source>Export a document that is far larger than the chat’s file?</source>
        <translation>Ein Dokument exportieren, das weit größer ist als die Datei des Chats?</translation>
    </message>
    <message>
        <source>As text the chat takes more than %1.</source>
        <translation>Als Text ist der Chat größer als %1.</translation>
    </message>
    <message>
        <source>Exporting to “%1” …</source>
        <translation>Wird nach „%1“ exportiert …</translation>
    </message>
    <message>
        <source>Print</source>
        <translation>Drucken</translation>
    </message>
</context>
<context>
    <name>vell::ChatTools</name>
    <message>
        <source>Go to &amp;Date …</source>
        <translation>Gehe zu &amp;Datum …</translation>
    </message>
    <message>
        <source>&amp;Previous Day</source>
        <translation>Vo&amp;rheriger Tag</translation>
    </message>
    <message>
        <source>&amp;Next Day</source>
        <translation>&amp;Nächster Tag</translation>
    </message>
    <message>
        <source>&amp;Shared Items</source>
        <translation>&amp;Geteilte Inhalte</translation>
    </message>
    <message>
        <source>The chat has no earlier day.</source>
        <translation>Der Chat hat keinen früheren Tag.</translation>
    </message>
    <message>
        <source>The chat has no later day.</source>
        <translation>Der Chat hat keinen späteren Tag.</translation>
    </message>
</context>
<context>
    <name>vell::ContactsBar</name>
    <message>
        <source>This app can show participant names and icons if you grant it access to your addressbook.</source>
        <translation>Dieses Programm kann Namen und Bilder der Beteiligten zeigen, wenn Sie ihm Zugriff auf Ihr Adressbuch gewähren.</translation>
    </message>
    <message>
        <source>Grant or Deny</source>
        <translation>Erlauben oder ablehnen</translation>
    </message>
</context>
<context>
    <name>vell::ConversationList</name>
    <message>
        <source>Conversations</source>
        <translation>Gespräche</translation>
    </message>
    <message>
        <source>&amp;Open in Its Own Window</source>
        <translation>In eigenem Fenster ö&amp;ffnen</translation>
    </message>
</context>
<context>
    <name>vell::ConversationModel</name>
    <message>
        <source>Without a date</source>
        <translation>Ohne Datum</translation>
    </message>
    <message>
        <source>%1 copies</source>
        <extracomment>A conversation whose file is there more than once.</extracomment>
        <translation>%1 Kopien</translation>
    </message>
</context>
<context>
    <name>vell::DocumentWindow</name>
    <message>
        <source>%1 (recovered)</source>
        <translation>%1 (gerettet)</translation>
    </message>
    <message>
        <source>Toolbar</source>
        <translation>Werkzeugleiste</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>F&amp;ormat</source>
        <translation>F&amp;ormat</translation>
    </message>
    <message>
        <source>&amp;Font</source>
        <translation>&amp;Schrift</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Actual Size</source>
        <translation>&amp;Originalgröße</translation>
    </message>
    <message>
        <source>&amp;Full Screen</source>
        <translation>&amp;Vollbild</translation>
    </message>
    <message>
        <source>Standard Input</source>
        <translation>Standardeingabe</translation>
    </message>
    <message>
        <source>&amp;Go</source>
        <translation>&amp;Gehe zu</translation>
    </message>
    <message>
        <source>&amp;Toolbar</source>
        <translation>&amp;Werkzeugleiste</translation>
    </message>
    <message>
        <source>Time zone: %1</source>
        <translation>Zeitzone: %1</translation>
    </message>
</context>
<context>
    <name>vell::FindBar</name>
    <message>
        <source>Find in chat</source>
        <translation>Im Chat suchen</translation>
    </message>
    <message>
        <source>Previous match</source>
        <translation>Voriger Treffer</translation>
    </message>
    <message>
        <source>Next match</source>
        <translation>Nächster Treffer</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Searching …</source>
        <translation>Suche läuft …</translation>
    </message>
    <message>
        <source>Not found</source>
        <translation>Nicht gefunden</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <extracomment>&quot;3 of 120&quot; matches; the second number grows while the search is under way.</extracomment>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>Match case</source>
        <translation>Groß- und Kleinschreibung beachten</translation>
    </message>
    <message>
        <source>Whole words</source>
        <translation>Ganze Wörter</translation>
    </message>
    <message>
        <source>Regular expression</source>
        <translation>Regulärer Ausdruck</translation>
    </message>
    <message>
        <source>List of matches</source>
        <translation>Liste der Treffer</translation>
    </message>
    <message>
        <source>Messages by</source>
        <translation>Nachrichten von</translation>
    </message>
    <message>
        <source>Everybody</source>
        <translation>Allen</translation>
    </message>
    <message>
        <source>List</source>
        <translation>Liste</translation>
    </message>
</context>
<context>
    <name>vell::FindFilesWindow</name>
    <message>
        <source>Find iChat Files</source>
        <translation>iChat-Dateien suchen</translation>
    </message>
    <message>
        <source>iChat Files in “%1”</source>
        <translation>iChat-Dateien in „%1“</translation>
    </message>
    <message>
        <source>Filter by name, folder or participant</source>
        <translation>Nach Name, Ordner oder Beteiligten filtern</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Search Again</source>
        <translation>Erneut suchen</translation>
    </message>
    <message>
        <source>%1 transcripts in %2 files</source>
        <translation>%1 Mitschnitte in %2 Dateien</translation>
    </message>
    <message>
        <source>&amp;Hidden folders</source>
        <translation>&amp;Versteckte Ordner</translation>
    </message>
    <message>
        <source>Transcripts</source>
        <translation>Mitschnitte</translation>
    </message>
    <message>
        <source>%1 of %2 transcripts in %3 files</source>
        <translation>%1 von %2 Mitschnitten in %3 Dateien</translation>
    </message>
    <message numerus="yes">
        <source>Open %n transcripts, each in a window of its own?</source>
        <translation>
            <numerusform>%n Mitschnitt in einem eigenen Fenster öffnen?</numerusform>
            <numerusform>%n Mitschnitte öffnen, jeden in einem eigenen Fenster?</numerusform>
        </translation>
    </message>
    <message>
        <source>Add to &amp;Library</source>
        <translation>Zur &amp;Bibliothek hinzufügen</translation>
    </message>
</context>
<context>
    <name>vell::FontSizePanel</name>
    <message>
        <source>Font Size</source>
        <translation>Schriftgröße</translation>
    </message>
    <message>
        <source> pt</source>
        <extracomment>Points, after a font&apos;s size</extracomment>
        <translation> pt</translation>
    </message>
    <message>
        <source>Font size</source>
        <translation>Schriftgröße</translation>
    </message>
    <message>
        <source>Usual sizes</source>
        <translation>Übliche Größen</translation>
    </message>
    <message>
        <source>&amp;Size:</source>
        <translation>&amp;Größe:</translation>
    </message>
</context>
<context>
    <name>vell::FoundList</name>
    <message>
        <source>Messages found</source>
        <translation>Gefundene Nachrichten</translation>
    </message>
    <message>
        <source>No messages found</source>
        <translation>Keine Nachrichten gefunden</translation>
    </message>
</context>
<context>
    <name>vell::FoundMessages</name>
    <message>
        <source>The library can’t be searched: %1</source>
        <translation>Die Bibliothek kann nicht durchsucht werden: %1</translation>
    </message>
    <message>
        <source>%1 › %2</source>
        <extracomment>Who wrote a message › whom the conversation is with.</extracomment>
        <translation>%1 › %2</translation>
    </message>
    <message>
        <source>%1, %2: %3</source>
        <extracomment>&quot;Jonas, 1 May 2005: the line that holds the match&quot;</extracomment>
        <translation>%1, %2: %3</translation>
    </message>
</context>
<context>
    <name>vell::GoToDateDialog</name>
    <message>
        <source>Go to Date</source>
        <translation>Gehe zu Datum</translation>
    </message>
    <message>
        <source>Previous month</source>
        <translation>Voriger Monat</translation>
    </message>
    <message>
        <source>Next month</source>
        <translation>Nächster Monat</translation>
    </message>
    <message>
        <source>&amp;Previous Day</source>
        <translation>Vo&amp;rheriger Tag</translation>
    </message>
    <message>
        <source>&amp;Next Day</source>
        <translation>&amp;Nächster Tag</translation>
    </message>
    <message>
        <source>To the previous day with messages (Alt+Up)</source>
        <translation>Zum vorherigen Tag mit Nachrichten (Alt+Auf)</translation>
    </message>
    <message>
        <source>To the next day with messages (Alt+Down)</source>
        <translation>Zum nächsten Tag mit Nachrichten (Alt+Ab)</translation>
    </message>
    <message>
        <source>1 message</source>
        <translation>1 Nachricht</translation>
    </message>
    <message>
        <source>%1 messages</source>
        <translation>%1 Nachrichten</translation>
    </message>
    <message>
        <source>no messages, notices only</source>
        <translation>keine Nachrichten, nur Hinweise</translation>
    </message>
    <message>
        <source>nothing was written</source>
        <translation>nichts geschrieben</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <extracomment>&quot;DATE: 12 messages&quot;</extracomment>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>vell::JumpHistory</name>
    <message>
        <source>&amp;Back</source>
        <translation>&amp;Zurück</translation>
    </message>
    <message>
        <source>&amp;Forward</source>
        <translation>&amp;Vorwärts</translation>
    </message>
</context>
<context>
    <name>vell::Library</name>
    <message>
        <source>The library’s index can’t be used: %1. Chats can be opened as ever.</source>
        <translation>Der Index der Bibliothek kann nicht verwendet werden: %1. Chats lassen sich weiterhin öffnen.</translation>
    </message>
    <message>
        <source>Another program is working on the library’s index.</source>
        <translation>Ein anderes Programm arbeitet am Index der Bibliothek.</translation>
    </message>
    <message>
        <source>The library’s index was damaged and has been made again.</source>
        <translation>Der Index der Bibliothek war beschädigt und wurde neu angelegt.</translation>
    </message>
    <message>
        <source>The folder “%1” isn’t there now.</source>
        <translation>Der Ordner „%1“ ist gerade nicht da.</translation>
    </message>
</context>
<context>
    <name>vell::LibraryStatus</name>
    <message>
        <source>nearly done</source>
        <translation>fast fertig</translation>
    </message>
    <message>
        <source>%1 seconds left</source>
        <translation>noch %1 Sekunden</translation>
    </message>
    <message>
        <source>1 minute left</source>
        <translation>noch 1 Minute</translation>
    </message>
    <message>
        <source>%1 minutes left</source>
        <translation>noch %1 Minuten</translation>
    </message>
    <message>
        <source>Indexing</source>
        <translation>Indizierung</translation>
    </message>
    <message>
        <source>Indexing waits while a chat is opened</source>
        <translation>Die Indizierung wartet, während ein Chat geöffnet wird</translation>
    </message>
    <message>
        <source>Looking through your folders: %1 transcripts</source>
        <translation>Ordner werden durchgesehen: %1 Transkripte</translation>
    </message>
    <message>
        <source>Looking through your folders …</source>
        <translation>Ordner werden durchgesehen …</translation>
    </message>
    <message>
        <source>Indexing: %1 of %2 files</source>
        <translation>Indizierung: %1 von %2 Dateien</translation>
    </message>
    <message>
        <source>1 conversation</source>
        <translation>1 Gespräch</translation>
    </message>
    <message>
        <source>%1 conversations</source>
        <translation>%1 Gespräche</translation>
    </message>
    <message>
        <source>1 file couldn’t be read</source>
        <translation>1 Datei konnte nicht gelesen werden</translation>
    </message>
    <message>
        <source>%1 files couldn’t be read</source>
        <translation>%1 Dateien konnten nicht gelesen werden</translation>
    </message>
</context>
<context>
    <name>vell::LibraryWindow</name>
    <message>
        <source>Add a Folder to the Library</source>
        <translation>Ordner zur Bibliothek hinzufügen</translation>
    </message>
    <message>
        <source>Library</source>
        <translation>Bibliothek</translation>
    </message>
    <message>
        <source>All your chats in one place</source>
        <translation>Alle Ihre Chats an einem Ort</translation>
    </message>
    <message>
        <source>Add the folders that your transcripts are in, or drop them here. The files stay where they are and are only read.</source>
        <translation>Fügen Sie die Ordner mit Ihren Transkripten hinzu oder ziehen Sie sie hierher. Die Dateien bleiben, wo sie sind, und werden nur gelesen.</translation>
    </message>
    <message>
        <source>&amp;Add Folder …</source>
        <translation>Ordner &amp;hinzufügen …</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Library Folders …</source>
        <translation>&amp;Ordner der Bibliothek …</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Search All Chats</source>
        <translation>Alle Chats &amp;durchsuchen</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Statistics</source>
        <translation>&amp;Statistik</translation>
    </message>
    <message>
        <source>Dates are written 2009-07-14, 2009-07 or 2009; “has:” is followed by picture, link or file</source>
        <translation>Daten schreibt man 2009-07-14, 2009-07 oder 2009; auf „has:“ folgt picture, link oder file</translation>
    </message>
    <message>
        <source>Searching …</source>
        <translation>Suche läuft …</translation>
    </message>
    <message>
        <source>%1, the first %2 are listed</source>
        <translation>%1, die ersten %2 sind aufgelistet</translation>
    </message>
    <message>
        <source>F&amp;ormat</source>
        <translation>F&amp;ormat</translation>
    </message>
    <message>
        <source>&amp;Font</source>
        <translation>&amp;Schrift</translation>
    </message>
    <message>
        <source>&amp;Go</source>
        <translation>&amp;Gehe zu</translation>
    </message>
</context>
<context>
    <name>vell::Links</name>
    <message>
        <source>Open Link</source>
        <translation>Link öffnen</translation>
    </message>
    <message>
        <source>Do you want to open this address?

%1</source>
        <translation>Möchten Sie diese Adresse öffnen?

%1</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>Ö&amp;ffnen</translation>
    </message>
    <message>
        <source>No program here opens this address.

%1</source>
        <translation>Kein Programm hier öffnet diese Adresse.

%1</translation>
    </message>
</context>
<context>
    <name>vell::LoadLogView</name>
    <message>
        <source>Vell Load Log</source>
        <translation>Vell-Ladeprotokoll</translation>
    </message>
    <message>
        <source>Open Brindle Support Page</source>
        <translation>Brindle-Hilfeseite öffnen</translation>
    </message>
    <message>
        <source>Open Email Panel</source>
        <translation>E-Mail schreiben</translation>
    </message>
    <message>
        <source>No log could be found 😔</source>
        <translation>Kein Protokoll gefunden 😔</translation>
    </message>
    <message>
        <source>Load log</source>
        <translation>Ladeprotokoll</translation>
    </message>
    <message>
        <source>It looks like loading the .ichat chatscript failed for some reason 😔. We&apos;d love to debug this and collected some information while loading the file.
We would be very thankful if you could send us the file load information below. It does NOT contain the full file but only the first %1 bytes. Those should not contain any private information.

If you could send us a complete sample file which fails to load, that would also be very helpful. We understand that you might not want to share personal information. If you do, we promise to delete it immediatly after analysis and confirm the deletion to you by email.</source>
        <translation>Das Laden des .ichat-Mitschnitts ist aus irgendeinem Grund fehlgeschlagen 😔. Wir möchten dem nachgehen und haben beim Laden der Datei einige Angaben gesammelt.
Wir wären Ihnen sehr dankbar, wenn Sie uns die folgenden Angaben zum Laden senden würden. Sie enthalten NICHT die ganze Datei, sondern nur die ersten %1 Byte. Darin sollten keine privaten Angaben stehen.

Sehr hilfreich wäre auch eine vollständige Datei, die sich nicht laden lässt. Wir verstehen, dass Sie persönliche Angaben vielleicht nicht weitergeben möchten. Wenn Sie es tun, versprechen wir, die Datei sofort nach der Untersuchung zu löschen und Ihnen das per E-Mail zu bestätigen.</translation>
    </message>
</context>
<context>
    <name>vell::MatchList</name>
    <message>
        <source>Matches</source>
        <translation>Treffer</translation>
    </message>
</context>
<context>
    <name>vell::MatchModel</name>
    <message>
        <source>%1, %2</source>
        <extracomment>&quot;Jonas, 1 May 2005, 20:05&quot;</extracomment>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <extracomment>&quot;Jonas, 1 May 2005, 20:05: the line that holds the match&quot;</extracomment>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>vell::OpenFailures</name>
    <message>
        <source>No message of the document “%1” can be read.</source>
        <translation>Keine Nachricht des Dokuments „%1“ ist lesbar.</translation>
    </message>
    <message>
        <source>Perhaps a backup holds an earlier copy of the file.</source>
        <translation>Vielleicht enthält eine Sicherung eine frühere Kopie der Datei.</translation>
    </message>
    <message>
        <source>&amp;Show What Can Be Read</source>
        <translation>Lesbares &amp;zeigen</translation>
    </message>
    <message>
        <source>The document “%1” could not be opened. The file is damaged or not a transcript.</source>
        <translation>Das Dokument „%1“ konnte nicht geöffnet werden. Die Datei ist beschädigt oder kein Mitschnitt.</translation>
    </message>
    <message>
        <source>The document “%1” could not be opened. There is no such file.</source>
        <translation>Das Dokument „%1“ konnte nicht geöffnet werden. Es gibt keine solche Datei.</translation>
    </message>
    <message>
        <source>The document “%1” could not be opened. You don’t have permission to read it.</source>
        <translation>Das Dokument „%1“ konnte nicht geöffnet werden. Sie haben keine Berechtigung, es zu lesen.</translation>
    </message>
    <message>
        <source>A load log opens next; you can send it to us.</source>
        <translation>Gleich öffnet sich ein Ladeprotokoll, das Sie uns senden können.</translation>
    </message>
    <message>
        <source>It may have been moved, renamed or deleted. “Find iChat Files …” in the File menu can search your disks for it.</source>
        <translation>Es wurde vielleicht verschoben, umbenannt oder gelöscht. „iChat-Dateien suchen …“ im Menü „Datei“ sucht es auf Ihren Datenträgern.</translation>
    </message>
    <message>
        <source>Ask its owner for access or for a copy.</source>
        <translation>Bitten Sie den Eigentümer um Zugriff oder um eine Kopie.</translation>
    </message>
    <message>
        <source>Documents that could not be opened</source>
        <translation>Dokumente, die nicht geöffnet werden konnten</translation>
    </message>
    <message numerus="yes">
        <source>%n documents could not be opened.</source>
        <translation>
            <numerusform>%n Dokument konnte nicht geöffnet werden.</numerusform>
            <numerusform>%n Dokumente konnten nicht geöffnet werden.</numerusform>
        </translation>
    </message>
    <message>
        <source>A load log opens next for each damaged one; you can send it to us.</source>
        <translation>Für jedes beschädigte öffnet sich gleich ein Ladeprotokoll, das Sie uns senden können.</translation>
    </message>
    <message>
        <source>The document “%1” could not be opened. It is larger than Vell can read.</source>
        <translation>Das Dokument „%1“ konnte nicht geöffnet werden. Es ist größer, als Vell lesen kann.</translation>
    </message>
    <message>
        <source>Transcripts are rarely larger than a few megabytes; this is probably another kind of file.</source>
        <translation>Mitschnitte sind selten größer als einige Megabyte; wahrscheinlich ist dies eine andere Art von Datei.</translation>
    </message>
</context>
<context>
    <name>vell::PanelWindow</name>
    <message>
        <source>About %1</source>
        <translation>Über %1</translation>
    </message>
    <message>
        <source>Uses IGIdenticon.</source>
        <translation>Verwendet IGIdenticon.</translation>
    </message>
</context>
<context>
    <name>vell::PeopleList</name>
    <message>
        <source>People</source>
        <translation>Personen</translation>
    </message>
    <message>
        <source>Filter people</source>
        <translation>Personen filtern</translation>
    </message>
    <message>
        <source>Sort people</source>
        <translation>Personen sortieren</translation>
    </message>
    <message>
        <source>By Last &amp;Day</source>
        <translation>Nach letztem &amp;Tag</translation>
    </message>
    <message>
        <source>By &amp;Name</source>
        <translation>Nach &amp;Name</translation>
    </message>
    <message>
        <source>&amp;Separate Addresses</source>
        <translation>Adressen &amp;trennen</translation>
    </message>
    <message>
        <source>&amp;Join With</source>
        <translation>&amp;Zusammenführen mit</translation>
    </message>
    <message>
        <source>&amp;Somebody Else …</source>
        <translation>&amp;Jemand anderem …</translation>
    </message>
</context>
<context>
    <name>vell::PeopleModel</name>
    <message>
        <source>Everybody</source>
        <translation>Alle</translation>
    </message>
</context>
<context>
    <name>vell::PictureViewer</name>
    <message>
        <source>Previous Picture</source>
        <translation>Vorheriges Bild</translation>
    </message>
    <message>
        <source>Next Picture</source>
        <translation>Nächstes Bild</translation>
    </message>
    <message>
        <source>Copy Picture</source>
        <translation>Bild kopieren</translation>
    </message>
    <message>
        <source>Save Picture As …</source>
        <translation>Bild sichern unter …</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Picture</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <extracomment>&quot;3 of 120&quot; pictures</extracomment>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>Copy &amp;Picture</source>
        <translation>&amp;Bild kopieren</translation>
    </message>
    <message>
        <source>&amp;Save Picture As …</source>
        <translation>Bild &amp;sichern unter …</translation>
    </message>
</context>
<context>
    <name>vell::PreferencesWindow</name>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Contacts</source>
        <translation>Kontakte</translation>
    </message>
    <message>
        <source>Read names and pictures from the &amp;address book</source>
        <translation>Namen und Bilder aus dem &amp;Adressbuch lesen</translation>
    </message>
    <message>
        <source>This is the desktop’s address book and the vCard files in your contacts folders. Nothing is ever written to them.</source>
        <translation>Das sind das Adressbuch des Systems und die vCard-Dateien in Ihren Kontakte-Ordnern. Es wird nie etwas hineingeschrieben.</translation>
    </message>
    <message>
        <source>vCard files</source>
        <translation>vCard-Dateien</translation>
    </message>
    <message>
        <source>Add &amp;Files …</source>
        <translation>&amp;Dateien hinzufügen …</translation>
    </message>
    <message>
        <source>Add F&amp;older …</source>
        <translation>&amp;Ordner hinzufügen …</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <source>vCard files that are always read:</source>
        <translation>vCard-Dateien, die immer gelesen werden:</translation>
    </message>
    <message>
        <source>Choose vCard Files</source>
        <translation>vCard-Dateien auswählen</translation>
    </message>
    <message>
        <source>vCard files (*.vcf *.vcard)</source>
        <translation>vCard-Dateien (*.vcf *.vcard)</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Choose a Folder of vCard Files</source>
        <translation>Ordner mit vCard-Dateien auswählen</translation>
    </message>
    <message>
        <source>Windows</source>
        <translation>Fenster</translation>
    </message>
    <message>
        <source>Reopen &amp;windows from the last session</source>
        <translation>Fenster der letzten Sitzung &amp;wieder öffnen</translation>
    </message>
</context>
<context>
    <name>vell::PrintWindow</name>
    <message>
        <source>Previous Page</source>
        <translation>Vorige Seite</translation>
    </message>
    <message>
        <source>Next Page</source>
        <translation>Nächste Seite</translation>
    </message>
    <message>
        <source>Print</source>
        <translation>Drucken</translation>
    </message>
    <message>
        <source>Page</source>
        <translation>Seite</translation>
    </message>
    <message>
        <source>&amp;Print …</source>
        <translation>&amp;Drucken …</translation>
    </message>
    <message>
        <source>of %1</source>
        <translation>von %1</translation>
    </message>
    <message>
        <source>of %1 or more</source>
        <translation>von %1 oder mehr</translation>
    </message>
</context>
<context>
    <name>vell::RecoveryBar</name>
    <message>
        <source>Recovered %1 of about %2 messages; the file is damaged after byte %3</source>
        <translation>%1 von etwa %2 Nachrichten gerettet; die Datei ist nach Byte %3 beschädigt</translation>
    </message>
    <message>
        <source>Recovered the only message; the file is damaged after byte %1</source>
        <translation>Die einzige Nachricht wurde gerettet; die Datei ist nach Byte %1 beschädigt</translation>
    </message>
    <message>
        <source>Messages recovered: %1; the file is damaged after byte %2</source>
        <translation>Gerettete Nachrichten: %1; die Datei ist nach Byte %2 beschädigt</translation>
    </message>
</context>
<context>
    <name>vell::RowMenu</name>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Copy &amp;Link Address</source>
        <translation>&amp;Link-Adresse kopieren</translation>
    </message>
    <message>
        <source>Copy &amp;Picture</source>
        <translation>&amp;Bild kopieren</translation>
    </message>
    <message>
        <source>&amp;Save Picture As …</source>
        <translation>Bild &amp;sichern unter …</translation>
    </message>
    <message>
        <source>&amp;Save File As …</source>
        <translation>Datei &amp;sichern unter …</translation>
    </message>
    <message>
        <source>&amp;Open Picture</source>
        <translation>Bild ö&amp;ffnen</translation>
    </message>
    <message>
        <source>&amp;Open Link</source>
        <translation>Link ö&amp;ffnen</translation>
    </message>
    <message>
        <source>&amp;Open Chat Alone</source>
        <translation>Chat &amp;allein öffnen</translation>
    </message>
</context>
<context>
    <name>vell::SearchBar</name>
    <message>
        <source>From</source>
        <translation>Von</translation>
    </message>
    <message>
        <source>With</source>
        <translation>Mit</translation>
    </message>
    <message>
        <source>After</source>
        <translation>Nach</translation>
    </message>
    <message>
        <source>Before</source>
        <translation>Vor</translation>
    </message>
    <message>
        <source>In</source>
        <translation>In</translation>
    </message>
    <message>
        <source>Has</source>
        <translation>Enthält</translation>
    </message>
    <message>
        <source>Search all chats</source>
        <translation>Alle Chats durchsuchen</translation>
    </message>
    <message>
        <source>Order of what was found</source>
        <translation>Reihenfolge der Treffer</translation>
    </message>
    <message>
        <source>Newest First</source>
        <translation>Neueste zuerst</translation>
    </message>
    <message>
        <source>Best First</source>
        <translation>Beste zuerst</translation>
    </message>
    <message>
        <source>a picture</source>
        <translation>ein Bild</translation>
    </message>
    <message>
        <source>a link</source>
        <translation>einen Link</translation>
    </message>
    <message>
        <source>a file</source>
        <translation>eine Datei</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <extracomment>A filter of a search and what it is set to: &quot;From: anna&quot;</extracomment>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>Remove This Filter</source>
        <translation>Diesen Filter entfernen</translation>
    </message>
    <message>
        <source>Picture</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>Link</source>
        <translation>Link</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
</context>
<context>
    <name>vell::SearchPlaces</name>
    <message>
        <source>Search &amp;in</source>
        <translation>Suchen &amp;in</translation>
    </message>
    <message>
        <source>&amp;Add Folder …</source>
        <translation>Ordner &amp;hinzufügen …</translation>
    </message>
    <message>
        <source>Home folder</source>
        <translation>Persönlicher Ordner</translation>
    </message>
    <message>
        <source>System disk</source>
        <translation>Systemdatenträger</translation>
    </message>
    <message>
        <source>Add a Folder to Search</source>
        <translation>Zu durchsuchenden Ordner hinzufügen</translation>
    </message>
</context>
<context>
    <name>vell::SharedItems</name>
    <message>
        <source>Picture</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
</context>
<context>
    <name>vell::SharedPane</name>
    <message>
        <source>Pictures</source>
        <translation>Bilder</translation>
    </message>
    <message>
        <source>Links</source>
        <translation>Links</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>No pictures in this chat</source>
        <translation>Keine Bilder in diesem Chat</translation>
    </message>
    <message>
        <source>No links in this chat</source>
        <translation>Keine Links in diesem Chat</translation>
    </message>
    <message>
        <source>No files in this chat</source>
        <translation>Keine Dateien in diesem Chat</translation>
    </message>
    <message>
        <source>Shared Items</source>
        <translation>Geteilte Inhalte</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <extracomment>&quot;Pictures (120)&quot;</extracomment>
        <translation>%1 (%2)</translation>
    </message>
</context>
<context>
    <name>vell::SharedView</name>
    <message>
        <source>&amp;Show in Chat</source>
        <translation>Im Chat &amp;zeigen</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>Ö&amp;ffnen</translation>
    </message>
</context>
<context>
    <name>vell::Spoken</name>
    <message>
        <source>Picture %1</source>
        <translation>Bild %1</translation>
    </message>
</context>
<context>
    <name>vell::StatisticsPage</name>
    <message>
        <source>Messages by year</source>
        <translation>Nachrichten nach Jahr</translation>
    </message>
    <message>
        <source>Messages by hour of the day</source>
        <translation>Nachrichten nach Tageszeit</translation>
    </message>
    <message>
        <source>Messages by person</source>
        <translation>Nachrichten nach Person</translation>
    </message>
    <message>
        <source>Everybody</source>
        <translation>Alle</translation>
    </message>
    <message>
        <source>From %1 to %2</source>
        <translation>Vom %1 bis zum %2</translation>
    </message>
    <message>
        <source>Longest silence: %1 days, from %2 to %3</source>
        <translation>Längste Funkstille: %1 Tage, vom %2 bis zum %3</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <extracomment>A bar of a chart and how high it is: &quot;2009: 1,204 messages&quot;</extracomment>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>vell::TimeZoneDialog</name>
    <message>
        <source>Time Zone</source>
        <translation>Zeitzone</translation>
    </message>
    <message>
        <source>City or region</source>
        <translation>Stadt oder Region</translation>
    </message>
</context>
<context>
    <name>vell::TimeZoneMenu</name>
    <message>
        <source>Time &amp;Zone</source>
        <translation>&amp;Zeitzone</translation>
    </message>
    <message>
        <source>&amp;As on This Computer</source>
        <translation>&amp;Wie auf diesem Computer</translation>
    </message>
    <message>
        <source>&amp;Other …</source>
        <translation>&amp;Andere …</translation>
    </message>
</context>
<context>
    <name>vell::TranscriptTable</name>
    <message>
        <source>can’t be read</source>
        <translation>nicht lesbar</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Participants</source>
        <translation>Beteiligte</translation>
    </message>
    <message>
        <source>Messages</source>
        <translation>Nachrichten</translation>
    </message>
    <message>
        <source>Days</source>
        <translation>Tage</translation>
    </message>
</context>
<context>
    <name>vell::WelcomeWindow</name>
    <message>
        <source>Welcome to Vell</source>
        <translation>Willkommen bei Vell</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>Vell opens chat transcripts (“.ichat”) and never changes them.</source>
        <translation>Vell öffnet Chat-Mitschnitte („.ichat“) und verändert sie nie.</translation>
    </message>
    <message>
        <source>&amp;Open …</source>
        <translation>Ö&amp;ffnen …</translation>
    </message>
    <message>
        <source>F&amp;ind iChat Files …</source>
        <translation>iChat-Dateien &amp;suchen …</translation>
    </message>
    <message>
        <source>Recent transcripts</source>
        <translation>Zuletzt geöffnete Mitschnitte</translation>
    </message>
    <message>
        <source>None yet</source>
        <translation>Noch keine</translation>
    </message>
    <message>
        <source>Drop transcripts or folders here</source>
        <translation>Mitschnitte oder Ordner hier ablegen</translation>
    </message>
    <message>
        <source>&amp;Library</source>
        <translation>&amp;Bibliothek</translation>
    </message>
    <message>
        <source>&amp;Add Folder …</source>
        <translation>Ordner &amp;hinzufügen …</translation>
    </message>
    <message>
        <source>All chats of your folders in one window</source>
        <translation>Alle Chats Ihrer Ordner in einem Fenster</translation>
    </message>
    <message>
        <source>Add a Folder to the Library</source>
        <translation>Ordner zur Bibliothek hinzufügen</translation>
    </message>
</context>
</TS>
