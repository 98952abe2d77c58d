#include "KeyboardShortcuts/Recorder.h"

#include <QHBoxLayout>
#include <QLabel>

namespace KeyboardShortcuts {

Recorder::Recorder(const Name& name, RecorderCocoa::OnChange onChange, QWidget* parent) : QWidget(parent) {
    build(name, std::move(onChange), nullptr);
}

Recorder::Recorder(const QString& title, const Name& name, RecorderCocoa::OnChange onChange, QWidget* parent)
    : QWidget(parent) {
    build(name, std::move(onChange), new QLabel(title));
}

Recorder::Recorder(QWidget* label, const Name& name, RecorderCocoa::OnChange onChange, QWidget* parent)
    : QWidget(parent) {
    build(name, std::move(onChange), label);
}

void Recorder::build(const Name& name, RecorderCocoa::OnChange onChange, QWidget* label) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_label = label;
    if (m_label != nullptr) {
        layout->addWidget(m_label);
        if (auto* text = qobject_cast<QLabel*>(m_label)) {
            text->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        }
    }
    m_recorder = new RecorderCocoa(name, std::move(onChange), this);
    if (auto* text = qobject_cast<QLabel*>(m_label)) {
        text->setBuddy(m_recorder);
    }
    layout->addWidget(m_recorder);
    if (m_label != nullptr) {
        layout->addStretch(1);
    }
    setFocusProxy(m_recorder);
}

void Recorder::setName(const Name& name) {
    m_recorder->setShortcutName(name);
}

}  // namespace KeyboardShortcuts
