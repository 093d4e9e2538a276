#pragma once

#include <QWidget>

#include "ResourceSignature.h"

class QLineEdit;

/// The resource of the host that a setting names: shown, and kept as it is while the host offers none to choose from.
/// [host main]
class MyResourceSelector : public QWidget {
    Q_OBJECT

public:
    explicit MyResourceSelector(QWidget* parent = nullptr);

    void SetResource(const ResourceSignature& signature);
    /// The signature as settings store it; the channel of an I/O resource is part of it.
    QString GetSignature() const;

private:
    ResourceSignature m_signature;
    QLineEdit* m_name;
};
