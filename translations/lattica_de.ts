<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>AppController</name>
    <message>
        <source>Your changes could not be saved: %1. They stay in effect until Lattica quits, and saving is tried again with your next change.</source>
        <translation>Ihre Änderungen konnten nicht gespeichert werden: %1. Sie gelten, bis Lattica beendet wird, und beim nächsten Ändern wird erneut gespeichert.</translation>
    </message>
    <message>
        <source>Unable to update login item: %1</source>
        <translation>Der Eintrag für den Start bei der Anmeldung konnte nicht geändert werden: %1</translation>
    </message>
    <message>
        <source>Window control is required to move windows.</source>
        <translation>Zum Verschieben von Fenstern wird die Fenstersteuerung benötigt.</translation>
    </message>
    <message>
        <source>Shortcut target display is currently not connected.</source>
        <translation>Der Bildschirm dieses Tastenkürzels ist gerade nicht angeschlossen.</translation>
    </message>
    <message>
        <source>Window control is already available.</source>
        <translation>Die Fenstersteuerung ist bereits verfügbar.</translation>
    </message>
    <message>
        <source>Window control is still not available. Click Open Help to see why.</source>
        <translation>Die Fenstersteuerung ist weiterhin nicht verfügbar. Klicken Sie auf „Hilfe öffnen“, um den Grund zu sehen.</translation>
    </message>
    <message>
        <source>Checked screen capture again.</source>
        <translation>Bildschirmaufnahme erneut geprüft.</translation>
    </message>
</context>
<context>
    <name>Appcast</name>
    <message>
        <source>The document is empty.</source>
        <translation>Das Dokument ist leer.</translation>
    </message>
    <message>
        <source>The document is not an RSS feed.</source>
        <translation>Das Dokument ist kein RSS-Feed.</translation>
    </message>
</context>
<context>
    <name>CapabilityText</name>
    <message>
        <source>Granted</source>
        <translation>Erteilt</translation>
    </message>
    <message>
        <source>Limited</source>
        <translation>Eingeschränkt</translation>
    </message>
    <message>
        <source>Missing</source>
        <translation>Fehlt</translation>
    </message>
</context>
<context>
    <name>CommandLine</name>
    <message>
        <source>
Commands:
</source>
        <translation>
Befehle:
</translation>
    </message>
    <message>
        <source>
TARGET is a monitor&apos;s number as the panel shows it, its name, or next, previous, left, right,
up or down from the focused window&apos;s monitor.
Exit status: 0 done, 1 nothing to do or partly done, 2 bad arguments, 3 the session does not allow it.
</source>
        <translation>
TARGET ist die Nummer eines Bildschirms, wie das Panel sie zeigt, sein Name oder next, previous, left,
right, up oder down, ausgehend vom Bildschirm des fokussierten Fensters.
Exit-Status: 0 erledigt, 1 nichts zu tun oder nur teilweise erledigt, 2 ungültige Argumente, 3 die Sitzung
erlaubt es nicht.
</translation>
    </message>
    <message>
        <source>
Try &apos;lattica --help&apos;.
</source>
        <translation>
„lattica --help“ zeigt die Hilfe.
</translation>
    </message>
    <message>
        <source>Show this help.</source>
        <translation>Diese Hilfe anzeigen.</translation>
    </message>
    <message>
        <source>Show the version.</source>
        <translation>Die Version anzeigen.</translation>
    </message>
    <message>
        <source>The monitor to move to.</source>
        <translation>Der Bildschirm, auf den verschoben wird.</translation>
    </message>
    <message>
        <source>The monitor to move from.</source>
        <translation>Der Bildschirm, von dem verschoben wird.</translation>
    </message>
    <message>
        <source>Scale windows to the target monitor this time.</source>
        <translation>Fenster diesmal an den Zielbildschirm anpassen.</translation>
    </message>
    <message>
        <source>Keep windows&apos; sizes this time.</source>
        <translation>Fenstergrößen diesmal beibehalten.</translation>
    </message>
    <message>
        <source>Print machine-readable JSON.</source>
        <translation>Maschinenlesbares JSON ausgeben.</translation>
    </message>
    <message>
        <source>Lattica moves windows between monitors.</source>
        <translation>Lattica verschiebt Fenster zwischen Bildschirmen.</translation>
    </message>
    <message>
        <source>What to do (see below).</source>
        <translation>Was zu tun ist (siehe unten).</translation>
    </message>
    <message>
        <source>options need a command.</source>
        <translation>Optionen brauchen einen Befehl.</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not a command.</source>
        <translation>„%1“ ist kein Befehl.</translation>
    </message>
    <message>
        <source>--adjust-size and --keep-size cannot both be given.</source>
        <translation>--adjust-size und --keep-size können nicht zusammen angegeben werden.</translation>
    </message>
    <message>
        <source>&apos;%1&apos; takes no further arguments.</source>
        <translation>„%1“ nimmt keine weiteren Argumente.</translation>
    </message>
    <message>
        <source>%1 needs %2.</source>
        <translation>%1 braucht %2.</translation>
    </message>
    <message>
        <source>%1 needs --to TARGET.</source>
        <translation>%1 braucht --to TARGET.</translation>
    </message>
    <message>
        <source>%1 needs --from TARGET.</source>
        <translation>%1 braucht --from TARGET.</translation>
    </message>
    <message>
        <source>&apos;%1&apos; does not move windows.</source>
        <translation>„%1“ verschiebt keine Fenster.</translation>
    </message>
    <message>
        <source>&apos;%1&apos; takes no --from.</source>
        <translation>„%1“ nimmt kein --from.</translation>
    </message>
    <message>
        <source>&apos;%1&apos; takes no --to.</source>
        <translation>„%1“ nimmt kein --to.</translation>
    </message>
</context>
<context>
    <name>CommandService</name>
    <message>
        <source>Window control is required to move windows.</source>
        <translation>Zum Verschieben von Fenstern wird die Fenstersteuerung benötigt.</translation>
    </message>
    <message>
        <source>The window list cannot be read on this desktop.</source>
        <translation>Die Fensterliste kann auf diesem Desktop nicht gelesen werden.</translation>
    </message>
    <message>
        <source>No running application is called &quot;%1&quot;.</source>
        <translation>Keine laufende Anwendung heißt „%1“.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; and &quot;%2&quot; are the same monitor, %3.</source>
        <translation>„%1“ und „%2“ sind derselbe Bildschirm, %3.</translation>
    </message>
</context>
<context>
    <name>CommandTable</name>
    <message>
        <source>List the monitors.</source>
        <translation>Die Bildschirme auflisten.</translation>
    </message>
    <message>
        <source>List the windows, front to back.</source>
        <translation>Die Fenster auflisten, von vorne nach hinten.</translation>
    </message>
    <message>
        <source>Move the focused window.</source>
        <translation>Das fokussierte Fenster verschieben.</translation>
    </message>
    <message>
        <source>Move every window of one monitor.</source>
        <translation>Alle Fenster eines Bildschirms verschieben.</translation>
    </message>
    <message>
        <source>the application&apos;s name or process id</source>
        <translation>den Namen oder die Prozess-ID der Anwendung</translation>
    </message>
    <message>
        <source>Move every window of an application (name or process id).</source>
        <translation>Alle Fenster einer Anwendung verschieben (Name oder Prozess-ID).</translation>
    </message>
    <message>
        <source>two monitors: swap TARGET TARGET</source>
        <translation>zwei Bildschirme: swap TARGET TARGET</translation>
    </message>
    <message>
        <source>Exchange the windows of two monitors.</source>
        <translation>Die Fenster zweier Bildschirme tauschen.</translation>
    </message>
    <message>
        <source>Open the panel of the running Lattica.</source>
        <translation>Das Panel des laufenden Lattica öffnen.</translation>
    </message>
    <message>
        <source>Open the settings of the running Lattica.</source>
        <translation>Die Einstellungen des laufenden Lattica öffnen.</translation>
    </message>
    <message>
        <source>End the running Lattica.</source>
        <translation>Das laufende Lattica beenden.</translation>
    </message>
</context>
<context>
    <name>DisplayCardView</name>
    <message>
        <source>Loading preview...</source>
        <translation>Vorschau wird geladen...</translation>
    </message>
    <message>
        <source>Preview unavailable</source>
        <translation>Keine Vorschau verfügbar</translation>
    </message>
    <message>
        <source>Move app windows...</source>
        <translation>App-Fenster verschieben...</translation>
    </message>
    <message>
        <source>Display %1, %2</source>
        <translation>Bildschirm %1, %2</translation>
    </message>
    <message>
        <source>Preview of %1</source>
        <translation>Vorschau von %1</translation>
    </message>
    <message>
        <source>Move app windows from %1</source>
        <translation>App-Fenster von %1 verschieben</translation>
    </message>
    <message>
        <source>Counting windows...</source>
        <translation>Fenster werden gezählt...</translation>
    </message>
    <message>
        <source>1 visible window</source>
        <translation>1 sichtbares Fenster</translation>
    </message>
    <message>
        <source>the visible windows</source>
        <translation>die sichtbaren Fenster</translation>
    </message>
    <message>
        <source>1 window</source>
        <translation>1 Fenster</translation>
    </message>
    <message>
        <source>Move %1 from screen %2 to %3</source>
        <translation>%1 von Bildschirm %2 nach %3 verschieben</translation>
    </message>
    <message>
        <source>No other display available for moving windows.</source>
        <translation>Kein anderer Bildschirm zum Verschieben der Fenster verfügbar.</translation>
    </message>
    <message>
        <source>Move visible windows to:</source>
        <translation>Sichtbare Fenster verschieben nach:</translation>
    </message>
    <message>
        <source>Loading applications...</source>
        <translation>Anwendungen werden geladen...</translation>
    </message>
    <message>
        <source>No applications found on this screen</source>
        <translation>Keine Anwendungen auf diesem Bildschirm gefunden</translation>
    </message>
    <message numerus="yes">
        <source>%n visible windows</source>
        <translation>
            <numerusform>%n sichtbares Fenster</numerusform>
            <numerusform>%n sichtbare Fenster</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n windows</source>
        <translation>
            <numerusform>%n Fenster</numerusform>
            <numerusform>%n Fenster</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>GnomeSessionCheck</name>
    <message>
        <source>Lattica&apos;s GNOME Shell extension answers only the running Lattica, and this copy is not it. Quit the other copy of Lattica, then start Lattica again.</source>
        <translation>Die GNOME-Shell-Erweiterung von Lattica antwortet nur dem laufenden Lattica, und dieses ist ein anderes. Beenden Sie das andere Lattica und starten Sie Lattica dann erneut.</translation>
    </message>
    <message>
        <source>Lattica&apos;s GNOME Shell extension (%1) is not installed. GNOME lets only a Shell extension move other applications&apos; windows: install Lattica&apos;s package, log out and back in once, then start Lattica again.</source>
        <translation>Die GNOME-Shell-Erweiterung von Lattica (%1) ist nicht installiert. Unter GNOME kann nur eine Shell-Erweiterung die Fenster anderer Anwendungen verschieben: Installieren Sie das Paket von Lattica, melden Sie sich einmal ab und wieder an und starten Sie Lattica dann erneut.</translation>
    </message>
    <message>
        <source>Lattica&apos;s GNOME Shell extension is installed but turned off. Turn it on in the Extensions application, or run: gnome-extensions enable %1</source>
        <translation>Die GNOME-Shell-Erweiterung von Lattica ist installiert, aber ausgeschaltet. Schalten Sie sie in der Anwendung „Erweiterungen“ ein oder führen Sie aus: gnome-extensions enable %1</translation>
    </message>
    <message>
        <source>GNOME Shell could not start Lattica&apos;s extension (%1). Check that the installed extension matches this version of GNOME, then log out and back in.</source>
        <translation>GNOME Shell konnte die Erweiterung von Lattica (%1) nicht starten. Prüfen Sie, ob die installierte Erweiterung zu dieser GNOME-Version passt, und melden Sie sich dann ab und wieder an.</translation>
    </message>
    <message>
        <source>Lattica&apos;s GNOME Shell extension (%1) does not answer. Log out and back in, then start Lattica again.</source>
        <translation>Die GNOME-Shell-Erweiterung von Lattica (%1) antwortet nicht. Melden Sie sich ab und wieder an und starten Sie Lattica dann erneut.</translation>
    </message>
    <message>
        <source>GNOME Shell did not take a picture of the monitors (%1): the panel shows each monitor without a preview. Log out and back in if Lattica&apos;s extension was updated since.</source>
        <translation>GNOME Shell hat kein Bild der Bildschirme aufgenommen (%1): Das Panel zeigt jeden Bildschirm ohne Vorschau. Melden Sie sich ab und wieder an, falls die Erweiterung von Lattica seitdem aktualisiert wurde.</translation>
    </message>
    <message>
        <source>no picture came back</source>
        <translation>es kam kein Bild zurück</translation>
    </message>
</context>
<context>
    <name>KWinSessionCheck</name>
    <message>
        <source>Lattica has lost its connection to KWin, the KDE Plasma window manager. Start Lattica again inside your Plasma session.</source>
        <translation>Lattica hat die Verbindung zu KWin, dem Fenstermanager von KDE Plasma, verloren. Starten Sie Lattica in Ihrer Plasma-Sitzung erneut.</translation>
    </message>
    <message>
        <source>KWin does not let Lattica capture the screen (%1). KWin serves screen pictures only to programs whose installed desktop file lists org.kde.KWin.ScreenShot2 in X-KDE-DBUS-Restricted-Interfaces: install Lattica with its desktop file, then start it again.</source>
        <translation>KWin erlaubt Lattica keine Bildschirmaufnahme (%1). KWin liefert Bildschirmbilder nur an Programme, deren installierte Desktop-Datei org.kde.KWin.ScreenShot2 in X-KDE-DBUS-Restricted-Interfaces nennt: Installieren Sie Lattica mit seiner Desktop-Datei und starten Sie es dann erneut.</translation>
    </message>
    <message>
        <source>no picture came back</source>
        <translation>es kam kein Bild zurück</translation>
    </message>
</context>
<context>
    <name>KeyboardShortcuts::ShortcutRecorder</name>
    <message>
        <source>Record Shortcut</source>
        <translation>Kürzel aufnehmen</translation>
    </message>
    <message>
        <source>Press Shortcut</source>
        <translation>Kürzel drücken</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Use Anyway</source>
        <translation>Trotzdem verwenden</translation>
    </message>
    <message>
        <source>This keyboard shortcut cannot be used as it’s already used by the “%1” menu item.</source>
        <translation>Dieses Tastenkürzel kann nicht verwendet werden, da es bereits vom Menüeintrag „%1“ belegt ist.</translation>
    </message>
    <message>
        <source>This keyboard shortcut cannot be used because it only uses the Alt key. Add Super, Ctrl or Shift to it.</source>
        <translation>Dieses Tastenkürzel kann nicht verwendet werden, da es nur die Alt-Taste nutzt. Nehmen Sie Super, Strg oder Umschalt hinzu.</translation>
    </message>
    <message>
        <source>This keyboard shortcut cannot be used as it’s already a system-wide keyboard shortcut.</source>
        <translation>Dieses Tastenkürzel kann nicht verwendet werden, da es bereits ein systemweites Tastenkürzel ist.</translation>
    </message>
    <message>
        <source>Most system-wide keyboard shortcuts can be changed in the settings of your desktop environment.</source>
        <translation>Die meisten systemweiten Tastenkürzel lassen sich in den Einstellungen Ihrer Desktop-Umgebung ändern.</translation>
    </message>
</context>
<context>
    <name>LatticaApp</name>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Open panel</source>
        <translation>Panel öffnen</translation>
    </message>
</context>
<context>
    <name>MonitorTargets</name>
    <message>
        <source>There is no monitor above %1.</source>
        <translation>Über %1 gibt es keinen Bildschirm.</translation>
    </message>
    <message>
        <source>There is no monitor below %1.</source>
        <translation>Unter %1 gibt es keinen Bildschirm.</translation>
    </message>
    <message>
        <source>There is no monitor to the left of %1.</source>
        <translation>Links von %1 gibt es keinen Bildschirm.</translation>
    </message>
    <message>
        <source>There is no monitor to the right of %1.</source>
        <translation>Rechts von %1 gibt es keinen Bildschirm.</translation>
    </message>
    <message>
        <source>1 monitor</source>
        <translation>1 Bildschirm</translation>
    </message>
    <message>
        <source>No monitor is connected.</source>
        <translation>Kein Bildschirm ist angeschlossen.</translation>
    </message>
    <message>
        <source>There is no monitor %1; there are %2, numbered as in the panel.</source>
        <translation>Es gibt keinen Bildschirm %1; es gibt %2, nummeriert wie im Panel.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; starts from the focused window&apos;s monitor, and no window has focus.</source>
        <translation>„%1“ geht vom Bildschirm des fokussierten Fensters aus, und kein Fenster hat den Fokus.</translation>
    </message>
    <message>
        <source>No monitor is called &quot;%1&quot;. The monitors are: %2.</source>
        <translation>Kein Bildschirm heißt „%1“. Die Bildschirme sind: %2.</translation>
    </message>
    <message numerus="yes">
        <source>%n monitors</source>
        <translation>
            <numerusform>%n Bildschirm</numerusform>
            <numerusform>%n Bildschirme</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>MoveShortcuts</name>
    <message>
        <source>Move focused window to next monitor</source>
        <translation>Fokussiertes Fenster auf den nächsten Bildschirm</translation>
    </message>
    <message>
        <source>Move focused window to previous monitor</source>
        <translation>Fokussiertes Fenster auf den vorigen Bildschirm</translation>
    </message>
    <message>
        <source>Move focused window to left monitor</source>
        <translation>Fokussiertes Fenster auf den linken Bildschirm</translation>
    </message>
    <message>
        <source>Move focused window to right monitor</source>
        <translation>Fokussiertes Fenster auf den rechten Bildschirm</translation>
    </message>
    <message>
        <source>Open panel</source>
        <translation>Panel öffnen</translation>
    </message>
    <message>
        <source>Swap windows of monitors %1 and %2</source>
        <translation>Fenster der Bildschirme %1 und %2 tauschen</translation>
    </message>
</context>
<context>
    <name>PermissionGuideView</name>
    <message>
        <source>Enable Required Permissions</source>
        <translation>Erforderliche Berechtigungen aktivieren</translation>
    </message>
    <message>
        <source>Lattica needs screen capture for previews and window control to move windows between displays.</source>
        <translation>Lattica braucht die Bildschirmaufnahme für Vorschauen und die Fenstersteuerung, um Fenster zwischen Bildschirmen zu verschieben.</translation>
    </message>
    <message>
        <source>When your session changes, check again: Lattica picks it up without a restart.</source>
        <translation>Wenn sich Ihre Sitzung ändert, prüfen Sie erneut: Lattica übernimmt es ohne Neustart.</translation>
    </message>
    <message>
        <source>Re-check Permissions</source>
        <translation>Berechtigungen erneut prüfen</translation>
    </message>
    <message>
        <source>Continue</source>
        <translation>Weiter</translation>
    </message>
    <message>
        <source>Screen Capture</source>
        <translation>Bildschirmaufnahme</translation>
    </message>
    <message>
        <source>Check Screen Capture</source>
        <translation>Bildschirmaufnahme prüfen</translation>
    </message>
    <message>
        <source>Open Help</source>
        <translation>Hilfe öffnen</translation>
    </message>
    <message>
        <source>Window Control</source>
        <translation>Fenstersteuerung</translation>
    </message>
    <message>
        <source>Check Window Control</source>
        <translation>Fenstersteuerung prüfen</translation>
    </message>
</context>
<context>
    <name>SettingsAboutSection</name>
    <message>
        <source>Version %1 (%2)</source>
        <translation>Version %1 (%2)</translation>
    </message>
    <message>
        <source>© %1 The Lattica developers</source>
        <translation>© %1 Die Entwickler von Lattica</translation>
    </message>
    <message>
        <source>Find Lost Windows Instantly</source>
        <translation>Verlorene Fenster sofort finden</translation>
    </message>
    <message>
        <source>Contact Support</source>
        <translation>Support kontaktieren</translation>
    </message>
    <message>
        <source>Credits</source>
        <translation>Mitwirkende</translation>
    </message>
    <message>
        <source>Lattica is developed in the open. Source code, issues and release notes live on the project page.</source>
        <translation>Lattica wird offen entwickelt. Quelltext, Fehlermeldungen und Versionshinweise finden Sie auf der Projektseite.</translation>
    </message>
</context>
<context>
    <name>SettingsBehaviorSection</name>
    <message>
        <source>Launch at login</source>
        <translation>Bei der Anmeldung starten</translation>
    </message>
    <message>
        <source>Show in taskbar</source>
        <translation>In der Taskleiste zeigen</translation>
    </message>
    <message>
        <source>Adjust window size to target screen</source>
        <translation>Fenstergröße an den Zielbildschirm anpassen</translation>
    </message>
    <message>
        <source>Previews are refreshed only when you click the tray icon.</source>
        <translation>Die Vorschauen werden nur erneuert, wenn Sie auf das Symbol im Systembereich klicken.</translation>
    </message>
    <message>
        <source>Launch at login starts %1.</source>
        <translation>Beim Anmelden wird %1 gestartet.</translation>
    </message>
</context>
<context>
    <name>SettingsDebugSection</name>
    <message>
        <source>Read both permissions again and update the badges.</source>
        <translation>Beide Berechtigungen erneut lesen und die Anzeigen aktualisieren.</translation>
    </message>
    <message>
        <source>Refresh Permissions</source>
        <translation>Berechtigungen aktualisieren</translation>
    </message>
</context>
<context>
    <name>SettingsPermissionsSection</name>
    <message>
        <source>Request Access</source>
        <translation>Zugriff anfordern</translation>
    </message>
    <message>
        <source>Open Help</source>
        <translation>Hilfe öffnen</translation>
    </message>
    <message>
        <source>Screen Capture</source>
        <translation>Bildschirmaufnahme</translation>
    </message>
    <message>
        <source>Needed to show live previews of your displays in the panel.</source>
        <translation>Nötig, um im Panel Live-Vorschauen Ihrer Bildschirme zu zeigen.</translation>
    </message>
    <message>
        <source>Window Control</source>
        <translation>Fenstersteuerung</translation>
    </message>
    <message>
        <source>Needed to find and move the windows of other applications.</source>
        <translation>Nötig, um die Fenster anderer Anwendungen zu finden und zu verschieben.</translation>
    </message>
</context>
<context>
    <name>SettingsSection</name>
    <message>
        <source>Permissions</source>
        <translation>Berechtigungen</translation>
    </message>
    <message>
        <source>Behavior</source>
        <translation>Verhalten</translation>
    </message>
    <message>
        <source>Shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Updates</source>
        <translation>Aktualisierungen</translation>
    </message>
    <message>
        <source>About</source>
        <translation>Über</translation>
    </message>
    <message>
        <source>Debug</source>
        <translation>Fehlersuche</translation>
    </message>
    <message>
        <source>Review what your session allows and open the help page that explains what is missing.</source>
        <translation>Sehen Sie, was Ihre Sitzung erlaubt, und öffnen Sie die Hilfeseite, die erklärt, was fehlt.</translation>
    </message>
    <message>
        <source>Control how Lattica behaves at login, in the taskbar, and during cross-display window moves.</source>
        <translation>Legen Sie fest, wie sich Lattica bei der Anmeldung, in der Taskleiste und beim Verschieben von Fenstern zwischen Bildschirmen verhält.</translation>
    </message>
    <message>
        <source>Assign a global keyboard shortcut per connected display to move the currently focused window.</source>
        <translation>Weisen Sie jedem angeschlossenen Bildschirm ein globales Tastenkürzel zu, das das gerade fokussierte Fenster dorthin verschiebt.</translation>
    </message>
    <message>
        <source>Choose how update checks run and manually trigger an update check at any time.</source>
        <translation>Wählen Sie, wie nach Aktualisierungen gesucht wird, und starten Sie die Suche jederzeit von Hand.</translation>
    </message>
    <message>
        <source>Use developer-only tools for testing onboarding and permission-related flows.</source>
        <translation>Werkzeuge für Entwickler, um die Einführung und die Abläufe rund um Berechtigungen zu testen.</translation>
    </message>
</context>
<context>
    <name>SettingsShortcutsSection</name>
    <message>
        <source>Moves</source>
        <translation>Verschieben</translation>
    </message>
    <message>
        <source>Connected screens</source>
        <translation>Angeschlossene Bildschirme</translation>
    </message>
    <message>
        <source>Disconnected screens</source>
        <translation>Getrennte Bildschirme</translation>
    </message>
    <message>
        <source>No connected screens were detected.</source>
        <translation>Es wurden keine angeschlossenen Bildschirme erkannt.</translation>
    </message>
    <message>
        <source>No disconnected screens with saved shortcuts.</source>
        <translation>Keine getrennten Bildschirme mit gespeicherten Tastenkürzeln.</translation>
    </message>
    <message numerus="yes">
        <source>Show %n more screens (%1 not shown)</source>
        <translation>
            <numerusform>%n weiteren Bildschirm zeigen (%1 nicht gezeigt)</numerusform>
            <numerusform>%n weitere Bildschirme zeigen (%1 nicht gezeigt)</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>SettingsUpdatesSection</name>
    <message>
        <source>Check for updates automatically on launch</source>
        <translation>Beim Start automatisch nach Aktualisierungen suchen</translation>
    </message>
    <message>
        <source>You are running Lattica %1 (%2).</source>
        <translation>Sie verwenden Lattica %1 (%2).</translation>
    </message>
    <message>
        <source>Check for Updates</source>
        <translation>Nach Aktualisierungen suchen</translation>
    </message>
</context>
<context>
    <name>SettingsView</name>
    <message>
        <source>Changes not saved</source>
        <translation>Änderungen nicht gespeichert</translation>
    </message>
</context>
<context>
    <name>ShortcutRecorderRow</name>
    <message>
        <source>Delete shortcut mapping for this disconnected screen</source>
        <translation>Tastenkürzel dieses getrennten Bildschirms löschen</translation>
    </message>
</context>
<context>
    <name>TrayPanelView</name>
    <message>
        <source>Lattica</source>
        <translation>Lattica</translation>
    </message>
    <message>
        <source>Preview displays and move windows from one display to another.</source>
        <translation>Bildschirme in der Vorschau sehen und Fenster von einem Bildschirm auf einen anderen verschieben.</translation>
    </message>
    <message>
        <source>Loading screen previews...</source>
        <translation>Bildschirmvorschauen werden geladen...</translation>
    </message>
    <message>
        <source>Preview generation runs in the background.</source>
        <translation>Die Vorschauen entstehen im Hintergrund.</translation>
    </message>
    <message>
        <source>No displays detected</source>
        <translation>Keine Bildschirme erkannt</translation>
    </message>
    <message>
        <source>Connect a display and try again.</source>
        <translation>Schließen Sie einen Bildschirm an und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>Permissions Required</source>
        <translation>Berechtigungen erforderlich</translation>
    </message>
    <message>
        <source>Lattica needs screen capture and window control to view screen previews and move windows.</source>
        <translation>Lattica braucht Bildschirmaufnahme und Fenstersteuerung, um Bildschirmvorschauen zu zeigen und Fenster zu verschieben.</translation>
    </message>
    <message>
        <source>Check Screen Capture</source>
        <translation>Bildschirmaufnahme prüfen</translation>
    </message>
    <message>
        <source>Check Window Control</source>
        <translation>Fenstersteuerung prüfen</translation>
    </message>
    <message>
        <source>Only one display is connected. Connect another display to enable window moves.</source>
        <translation>Nur ein Bildschirm ist angeschlossen. Schließen Sie einen weiteren an, um Fenster zu verschieben.</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Quit (%1)</source>
        <translation>Beenden (%1)</translation>
    </message>
    <message>
        <source>Screen Capture</source>
        <translation>Bildschirmaufnahme</translation>
    </message>
    <message>
        <source>Window Control</source>
        <translation>Fenstersteuerung</translation>
    </message>
</context>
<context>
    <name>UpdateChecker</name>
    <message>
        <source>The update feed address &quot;%1&quot; is not valid.</source>
        <translation>Die Adresse des Aktualisierungs-Feeds „%1“ ist ungültig.</translation>
    </message>
    <message>
        <source>The update feed must be fetched over HTTPS.</source>
        <translation>Der Aktualisierungs-Feed muss über HTTPS geladen werden.</translation>
    </message>
    <message>
        <source>The update feed address &quot;%1&quot; does not use HTTPS.</source>
        <translation>Die Adresse des Aktualisierungs-Feeds „%1“ verwendet kein HTTPS.</translation>
    </message>
    <message>
        <source>The update feed could not be read: %1</source>
        <translation>Der Aktualisierungs-Feed konnte nicht gelesen werden: %1</translation>
    </message>
    <message>
        <source>The update feed is larger than an update feed can be.</source>
        <translation>Der Aktualisierungs-Feed ist größer, als ein Aktualisierungs-Feed sein kann.</translation>
    </message>
    <message>
        <source>The update feed moved to an address that is not allowed: %1</source>
        <translation>Der Aktualisierungs-Feed ist an eine nicht erlaubte Adresse umgezogen: %1</translation>
    </message>
    <message>
        <source>The update feed redirects in a loop.</source>
        <translation>Der Aktualisierungs-Feed leitet im Kreis weiter.</translation>
    </message>
    <message>
        <source>The update feed was redirected too many times.</source>
        <translation>Der Aktualisierungs-Feed wurde zu oft weitergeleitet.</translation>
    </message>
    <message>
        <source>The update server answered with HTTP status %1.</source>
        <translation>Der Aktualisierungsserver antwortete mit HTTP-Status %1.</translation>
    </message>
    <message>
        <source>The update feed could not be loaded: %1</source>
        <translation>Der Aktualisierungs-Feed konnte nicht geladen werden: %1</translation>
    </message>
    <message>
        <source>The update server did not answer within %1 seconds.</source>
        <translation>Der Aktualisierungsserver hat nicht innerhalb von %1 Sekunden geantwortet.</translation>
    </message>
</context>
<context>
    <name>UpdateWindow</name>
    <message>
        <source>Software Update</source>
        <translation>Softwareaktualisierung</translation>
    </message>
    <message>
        <source>Checking for updates…</source>
        <translation>Suche nach Aktualisierungen…</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>You&apos;re up to date!</source>
        <translation>Sie sind auf dem neuesten Stand!</translation>
    </message>
    <message>
        <source>Lattica %1 is currently the newest version available.</source>
        <translation>Lattica %1 ist die neueste verfügbare Version.</translation>
    </message>
    <message>
        <source>A new version of Lattica is available!</source>
        <translation>Eine neue Version von Lattica ist verfügbar!</translation>
    </message>
    <message>
        <source>Lattica %1 is now available (you have %2). Would you like to download it now?</source>
        <translation>Lattica %1 ist jetzt verfügbar (Sie haben %2). Möchten Sie es jetzt herunterladen?</translation>
    </message>
    <message>
        <source>Download</source>
        <translation>Herunterladen</translation>
    </message>
    <message>
        <source>Remind Me Later</source>
        <translation>Später erinnern</translation>
    </message>
    <message>
        <source>Update Error!</source>
        <translation>Fehler bei der Aktualisierung!</translation>
    </message>
</context>
<context>
    <name>WindowMoveStatus</name>
    <message numerus="yes">
        <source>Moved %1 of %n windows.</source>
        <translation>
            <numerusform>%1 von %n Fenster verschoben.</numerusform>
            <numerusform>%1 von %n Fenstern verschoben.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Moved %1 of %n %2 windows.</source>
        <translation>
            <numerusform>%1 von %n Fenster von %2 verschoben.</numerusform>
            <numerusform>%1 von %n Fenstern von %2 verschoben.</numerusform>
        </translation>
    </message>
    <message>
        <source>No focused window was found to move.</source>
        <translation>Es wurde kein fokussiertes Fenster zum Verschieben gefunden.</translation>
    </message>
    <message>
        <source>Focused window could not be moved to %1.</source>
        <translation>Das fokussierte Fenster konnte nicht auf %1 verschoben werden.</translation>
    </message>
    <message>
        <source>Moved focused window to %1.</source>
        <translation>Fokussiertes Fenster auf %1 verschoben.</translation>
    </message>
</context>
<context>
    <name>WindowPresenter</name>
    <message>
        <source>Grant Required Permissions</source>
        <translation>Erforderliche Berechtigungen erteilen</translation>
    </message>
</context>
<context>
    <name>X11SessionCheck</name>
    <message>
        <source>Lattica has lost its connection to the X server. Start Lattica again inside your desktop session.</source>
        <translation>Lattica hat die Verbindung zum X-Server verloren. Starten Sie Lattica in Ihrer Desktop-Sitzung erneut.</translation>
    </message>
    <message>
        <source>This is a Wayland session, and Lattica can only reach X11 applications through Xwayland, where no window manager answers. Log in to an X11 (Xorg) session to move windows.</source>
        <translation>Dies ist eine Wayland-Sitzung, und Lattica erreicht X11-Anwendungen nur über Xwayland, wo kein Fenstermanager antwortet. Melden Sie sich in einer X11-Sitzung (Xorg) an, um Fenster zu verschieben.</translation>
    </message>
    <message>
        <source>This is a Wayland session: Lattica sees and moves only X11 applications, through Xwayland. Wayland applications are not listed and stay where they are. Log in to an X11 (Xorg) session to move every window.</source>
        <translation>Dies ist eine Wayland-Sitzung: Lattica sieht und verschiebt über Xwayland nur X11-Anwendungen. Wayland-Anwendungen werden nicht aufgeführt und bleiben, wo sie sind. Melden Sie sich in einer X11-Sitzung (Xorg) an, um jedes Fenster zu verschieben.</translation>
    </message>
    <message>
        <source>No window manager is running. Lattica moves windows through a window manager that follows the EWMH standard (Openbox, Xfwm4, KWin, Mutter, IceWM and most others). Start one, then check again.</source>
        <translation>Es läuft kein Fenstermanager. Lattica verschiebt Fenster über einen Fenstermanager, der dem EWMH-Standard folgt (Openbox, Xfwm4, KWin, Mutter, IceWM und die meisten anderen). Starten Sie einen und prüfen Sie dann erneut.</translation>
    </message>
    <message>
        <source>This is a Wayland session: through Xwayland Lattica cannot see what your monitors show, so there are no previews. Log in to an X11 (Xorg) session to see them.</source>
        <translation>Dies ist eine Wayland-Sitzung: Über Xwayland sieht Lattica nicht, was Ihre Bildschirme zeigen, daher gibt es keine Vorschauen. Melden Sie sich in einer X11-Sitzung (Xorg) an, um sie zu sehen.</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Lattica is not running.</source>
        <translation>Lattica läuft nicht.</translation>
    </message>
    <message>
        <source>Lattica is already running; its panel is open.</source>
        <translation>Lattica läuft bereits; sein Panel ist geöffnet.</translation>
    </message>
    <message>
        <source>Lattica is already running.</source>
        <translation>Lattica läuft bereits.</translation>
    </message>
</context>
</TS>
