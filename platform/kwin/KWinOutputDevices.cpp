// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinOutputDevices.h"

#include <poll.h>
#include <wayland-client.h>

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QHash>
#include <QLoggingCategory>
#include <QMutexLocker>
#include <cstring>

#include "kde-output-device-v2-client-protocol.h"

Q_LOGGING_CATEGORY(lcOutputDevices, "lattica.kwin.outputs", QtInfoMsg)

namespace {
// Version 2 brings the connector name; later versions only add events this reader does not need.
constexpr uint32_t kProtocolVersion = 2;
}  // namespace

QRectF KWinOutputDevice::geometry() const {
    const double factor = scale > 0 ? scale : 1;
    return QRectF(position, QSizeF(modeSize) / factor);
}

// One bound output device: what KWin has said since its last "done" is kept apart until then, so a
// reader never sees half of a change.
struct KWinOutputDevices::Device {
    uint32_t globalName = 0;
    kde_output_device_v2* proxy = nullptr;
    KWinOutputDevice pending;
    KWinOutputDevice current;
    bool complete = false;
    kde_output_device_mode_v2* currentMode = nullptr;
    QHash<kde_output_device_mode_v2*, QSize> modeSizes;
};

namespace {

using Device = KWinOutputDevices::Device;

Device* deviceOf(void* data) {
    return static_cast<Device*>(data);
}

void onModeSize(void* data, kde_output_device_mode_v2* mode, int32_t width, int32_t height) {
    deviceOf(data)->modeSizes.insert(mode, QSize(width, height));
}
void onModeRefresh(void*, kde_output_device_mode_v2*, int32_t) {}
void onModePreferred(void*, kde_output_device_mode_v2*) {}
void onModeRemoved(void* data, kde_output_device_mode_v2* mode) {
    Device* device = deviceOf(data);
    device->modeSizes.remove(mode);
    if (device->currentMode == mode) {
        device->currentMode = nullptr;
    }
    wl_proxy_destroy(reinterpret_cast<wl_proxy*>(mode));
}
const kde_output_device_mode_v2_listener kModeListener{onModeSize, onModeRefresh, onModePreferred, onModeRemoved};

void onGeometry(void* data, kde_output_device_v2*, int32_t x, int32_t y, int32_t, int32_t, int32_t, const char*,
                const char*, int32_t) {
    deviceOf(data)->pending.position = QPoint(x, y);
}
void onCurrentMode(void* data, kde_output_device_v2*, kde_output_device_mode_v2* mode) {
    deviceOf(data)->currentMode = mode;
}
void onMode(void* data, kde_output_device_v2*, kde_output_device_mode_v2* mode) {
    kde_output_device_mode_v2_add_listener(mode, &kModeListener, data);
}
void onDone(void* data, kde_output_device_v2*) {
    Device* device = deviceOf(data);
    if (device->currentMode != nullptr) {
        device->pending.modeSize = device->modeSizes.value(device->currentMode);
    }
    device->current = device->pending;
    device->complete = true;
}
void onScale(void* data, kde_output_device_v2*, wl_fixed_t factor) {
    deviceOf(data)->pending.scale = wl_fixed_to_double(factor);
}
void onEdid(void* data, kde_output_device_v2*, const char* raw) {
    deviceOf(data)->pending.edid = QByteArray::fromBase64(QByteArray(raw));
}
void onEnabled(void* data, kde_output_device_v2*, int32_t enabled) {
    deviceOf(data)->pending.enabled = enabled != 0;
}
void onUuid(void* data, kde_output_device_v2*, const char* uuid) {
    deviceOf(data)->pending.uuid = QString::fromUtf8(uuid);
}
void onSerialNumber(void*, kde_output_device_v2*, const char*) {}
void onEisaId(void*, kde_output_device_v2*, const char*) {}
void onCapabilities(void*, kde_output_device_v2*, uint32_t) {}
void onOverscan(void*, kde_output_device_v2*, uint32_t) {}
void onVrrPolicy(void*, kde_output_device_v2*, uint32_t) {}
void onRgbRange(void*, kde_output_device_v2*, uint32_t) {}
void onName(void* data, kde_output_device_v2*, const char* name) {
    deviceOf(data)->pending.name = QString::fromUtf8(name);
}
const kde_output_device_v2_listener kDeviceListener{
    onGeometry,     onCurrentMode, onMode,         onDone,     onScale,     onEdid,     onEnabled, onUuid,
    onSerialNumber, onEisaId,      onCapabilities, onOverscan, onVrrPolicy, onRgbRange, onName};

void destroyDevice(Device* device) {
    for (auto it = device->modeSizes.cbegin(); it != device->modeSizes.cend(); ++it) {
        wl_proxy_destroy(reinterpret_cast<wl_proxy*>(it.key()));
    }
    // Version 2 has no request to release a device: the proxy goes, KWin forgets it with the connection.
    wl_proxy_destroy(reinterpret_cast<wl_proxy*>(device->proxy));
    delete device;
}

void onGlobal(void* data, wl_registry* registry, uint32_t name, const char* interface, uint32_t version) {
    if (std::strcmp(interface, kde_output_device_v2_interface.name) != 0) {
        return;
    }
    auto* device = new Device;
    device->globalName = name;
    device->proxy = static_cast<kde_output_device_v2*>(
        wl_registry_bind(registry, name, &kde_output_device_v2_interface, qMin(version, kProtocolVersion)));
    kde_output_device_v2_add_listener(device->proxy, &kDeviceListener, device);
    static_cast<QList<Device*>*>(data)->append(device);
}

void onGlobalRemove(void* data, wl_registry*, uint32_t name) {
    auto* devices = static_cast<QList<Device*>*>(data);
    for (qsizetype i = 0; i < devices->size(); ++i) {
        if (devices->at(i)->globalName == name) {
            destroyDevice(devices->takeAt(i));
            return;
        }
    }
}

const wl_registry_listener kRegistryListener{onGlobal, onGlobalRemove};

void onSyncDone(void* data, wl_callback* callback, uint32_t) {
    *static_cast<bool*>(data) = true;
    wl_callback_destroy(callback);
}
const wl_callback_listener kSyncListener{onSyncDone};

}  // namespace

std::unique_ptr<KWinOutputDevices> KWinOutputDevices::connect() {
    if (qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_SOCKET")) {
        return nullptr;
    }
    // Connected at the first look at the devices, and again after a failure: an answer that came too late
    // is not the end.
    return std::unique_ptr<KWinOutputDevices>(new KWinOutputDevices());
}

KWinOutputDevices::~KWinOutputDevices() {
    const QMutexLocker lock(&m_mutex);
    close();
}

bool KWinOutputDevices::open() {
    m_display = wl_display_connect(nullptr);
    if (m_display == nullptr) {
        qCDebug(lcOutputDevices) << "cannot connect to the Wayland display";
        return false;
    }
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &kRegistryListener, &m_devices);
    // The first answer announces the devices, the second their descriptions. KWin reads the whole
    // executable of every client that connects before it answers at all: a large unstripped build waits
    // a second or more here.
    if (!roundTrip(kAnswerTimeoutMs) || !roundTrip(kAnswerTimeoutMs)) {
        close();
        return false;
    }
    return true;
}

void KWinOutputDevices::close() {
    for (Device* device : std::as_const(m_devices)) {
        destroyDevice(device);
    }
    m_devices.clear();
    if (m_registry != nullptr) {
        wl_registry_destroy(m_registry);
        m_registry = nullptr;
    }
    if (m_display != nullptr) {
        wl_display_disconnect(m_display);
        m_display = nullptr;
    }
}

bool KWinOutputDevices::roundTrip(int timeoutMs) {
    bool answered = false;
    wl_callback* callback = wl_display_sync(m_display);
    wl_callback_add_listener(callback, &kSyncListener, &answered);
    // Without an answer the callback is destroyed here; KWin's late answer to it is then dropped.
    auto giveUp = [&] {
        if (!answered) {
            wl_callback_destroy(callback);
        }
        return false;
    };
    const QDeadlineTimer deadline(timeoutMs);
    while (!answered) {
        while (wl_display_prepare_read(m_display) != 0) {
            if (wl_display_dispatch_pending(m_display) < 0) {
                return giveUp();
            }
        }
        if (answered) {
            wl_display_cancel_read(m_display);
            break;
        }
        wl_display_flush(m_display);
        pollfd descriptor{wl_display_get_fd(m_display), POLLIN, 0};
        const int ready = ::poll(&descriptor, 1, static_cast<int>(qMax<qint64>(0, deadline.remainingTime())));
        if (ready <= 0) {
            wl_display_cancel_read(m_display);
            qCWarning(lcOutputDevices) << "KWin did not describe its outputs in time";
            return giveUp();
        }
        if (wl_display_read_events(m_display) < 0 || wl_display_dispatch_pending(m_display) < 0) {
            return giveUp();
        }
    }
    return wl_display_get_error(m_display) == 0;
}

QList<KWinOutputDevice> KWinOutputDevices::devices() {
    QElapsedTimer clock;
    clock.start();
    const QMutexLocker lock(&m_mutex);
    if (m_display != nullptr && wl_display_get_error(m_display) != 0) {
        qCInfo(lcOutputDevices) << "the Wayland connection broke; connecting again";
        close();
    }
    if (m_display == nullptr && !open()) {
        return {};
    }
    if (!roundTrip(kAnswerTimeoutMs)) {
        return {};
    }
    QList<KWinOutputDevice> devices;
    for (const Device* device : std::as_const(m_devices)) {
        if (device->complete) {
            devices.append(device->current);
        }
    }
    qCDebug(lcOutputDevices) << devices.size() << "output devices in" << clock.nsecsElapsed() / 1e6 << "ms";
    return devices;
}
