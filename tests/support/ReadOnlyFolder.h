// SPDX-License-Identifier: MIT
#pragma once

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QFile>
#include <QString>

// Makes a folder read-only for the calling thread, also when the tests run as root: the folder loses its
// write permission and the thread gives up the capability that lets root write anyway (CAP_DAC_OVERRIDE,
// from its effective set only, so that it can be taken back). Everything is restored on destruction.
// Capabilities belong to a thread: whatever writes must run on the thread that made this object.
class ReadOnlyFolder {
public:
    explicit ReadOnlyFolder(QString path) : m_path(std::move(path)) {
        m_permissions = QFile::permissions(m_path);
        QFile::setPermissions(m_path, QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup |
                                          QFile::ReadOther | QFile::ExeOther);
        m_droppedOverride = setOverrideEffective(false);
    }
    ~ReadOnlyFolder() { restore(); }
    ReadOnlyFolder(const ReadOnlyFolder&) = delete;
    ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;

    // Whether a new file in the folder is really refused, checked by trying to create one.
    bool refusesWrites() const {
        QFile probe(m_path + QStringLiteral("/.write-probe"));
        if (probe.open(QIODevice::WriteOnly)) {
            probe.remove();
            return false;
        }
        return true;
    }

    // Makes the folder writable again before the object ends.
    void restore() {
        if (m_droppedOverride) {
            setOverrideEffective(true);
            m_droppedOverride = false;
        }
        QFile::setPermissions(m_path, m_permissions);
    }

private:
    // Sets CAP_DAC_OVERRIDE in the thread's effective set; true when it was there and has been changed.
    static bool setOverrideEffective(bool effective) {
        __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
        __user_cap_data_struct data[2] = {};
        if (::syscall(SYS_capget, &header, data) != 0) {
            return false;
        }
        const __u32 bit = 1u << CAP_DAC_OVERRIDE;
        if ((data[0].permitted & bit) == 0) {
            return false;  // an ordinary user: the permission bits are enough
        }
        data[0].effective = effective ? (data[0].effective | bit) : (data[0].effective & ~bit);
        return ::syscall(SYS_capset, &header, data) == 0;
    }

    QString m_path;
    QFile::Permissions m_permissions;
    bool m_droppedOverride = false;
};
