// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QRect>
#include <QString>
#include <QTemporaryDir>

// Pictures of the desktop taken by the Shell's own screenshot service (org.gnome.Shell.Screenshot). The
// Shell serves it only to a few desktop programs, known by the bus names they own: while this object
// lives, this process owns the name of GNOME's screenshot tool, which no one else needs in a test
// session.
class ShellScreenshot {
public:
    ShellScreenshot();
    ~ShellScreenshot();
    ShellScreenshot(const ShellScreenshot&) = delete;
    ShellScreenshot& operator=(const ShellScreenshot&) = delete;

    // A rectangle of the desktop in the Shell's logical coordinates; a null image, with the reason in
    // error(), when the Shell refuses.
    QImage area(const QRect& rect);
    QString error() const { return m_error; }

private:
    QTemporaryDir m_folder;
    bool m_ownsName = false;
    int m_taken = 0;
    QString m_error;
};
