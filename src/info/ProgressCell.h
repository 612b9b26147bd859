#pragma once

#include "richtext/AttributedString.h"
#include "richtext/RichString.h"

#include <QObject>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

#include <functional>

// The info screen's progress row: what is going on, a bar (below 0: indeterminate), figures on
// the right, and a cancel button that a patch disables.
class ProgressCell : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the info screen")
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(double progress READ progress NOTIFY changed)
    Q_PROPERTY(QVariant status READ status NOTIFY changed)
    Q_PROPERTY(QString statusText READ statusText NOTIFY changed)
    Q_PROPERTY(bool cancelEnabled READ cancelEnabled NOTIFY changed)

public:
    explicit ProgressCell(QObject *parent = nullptr);

    QString title() const { return m_title; }
    double progress() const { return m_progress; }
    QVariant status() const { return QVariant::fromValue(m_status); }
    QString statusText() const { return m_statusText; }
    bool cancelEnabled() const { return m_cancelEnabled; }

    std::function<void()> onCancel;

    void setLabelText(const QString &text);
    void showDownloadProgress(qint64 done, qint64 total);
    void showPatchProgress(int done, int total);
    void reset();
    void showMessage(const QString &text);
    void showErrorMessage(const QString &text);
    void enableCancel();
    void disableCancel();
    Q_INVOKABLE void cancelButtonTouched();

signals:
    void changed();

private:
    void showStatus(const QString &markup, const QString &plain);

    RichString R;
    QString m_title;
    double m_progress = -1;
    AttributedString m_status;
    QString m_statusText;
    bool m_cancelEnabled = true;
};
