<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
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
        <source>%1 visible windows</source>
        <translation>%1 sichtbare Fenster</translation>
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
        <source>%1 windows</source>
        <translation>%1 Fenster</translation>
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
    <name>WindowPresenter</name>
    <message>
        <source>Grant Required Permissions</source>
        <translation>Erforderliche Berechtigungen erteilen</translation>
    </message>
</context>
</TS>
