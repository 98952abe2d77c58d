#pragma once

#include <QWidget>

#include "KeyboardShortcuts/RecorderCocoa.h"

class QLabel;

namespace KeyboardShortcuts {

// The recorder as a row of a form: the bare control, or the control with a label before it.
class Recorder : public QWidget {
    Q_OBJECT
public:
    explicit Recorder(const Name& name, RecorderCocoa::OnChange onChange = {}, QWidget* parent = nullptr);
    Recorder(const QString& title, const Name& name, RecorderCocoa::OnChange onChange = {}, QWidget* parent = nullptr);
    // A custom label widget; the recorder takes ownership of it.
    Recorder(QWidget* label, const Name& name, RecorderCocoa::OnChange onChange = {}, QWidget* parent = nullptr);

    RecorderCocoa* recorderCocoa() const { return m_recorder; }
    // The label widget, or null for the bare recorder.
    QWidget* label() const { return m_label; }
    bool hasLabel() const { return m_label != nullptr; }
    // Points the control at another name.
    void setName(const Name& name);

private:
    void build(const Name& name, RecorderCocoa::OnChange onChange, QWidget* label);

    RecorderCocoa* m_recorder = nullptr;
    QWidget* m_label = nullptr;
};

}  // namespace KeyboardShortcuts
