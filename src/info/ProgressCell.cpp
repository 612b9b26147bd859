#include "info/ProgressCell.h"

#include "presentation/TransferFigures.h"

ProgressCell::ProgressCell(QObject *parent)
    : QObject(parent)
    , R({QStringLiteral("p { font-name: OpenSans-Light; font-size: 13; line-height: 0.85; }"), QStringLiteral("right { align: right; }")})
{
    reset();
}

void ProgressCell::setLabelText(const QString &text)
{
    m_title = text;
    emit changed();
}

void ProgressCell::showStatus(const QString &markup, const QString &plain)
{
    m_status = R.render(QStringLiteral("<body>") + markup + QStringLiteral("</body>"));
    m_statusText = plain;
    emit changed();
}

void ProgressCell::showDownloadProgress(qint64 done, qint64 total)
{
    m_progress = total > 0 ? double(float(done) / float(total)) : -1;
    const QString figures = transferFigures(done, total);
    showStatus(QStringLiteral("<right><p>") + figures + QStringLiteral("</p></right>"), figures);
}

void ProgressCell::showPatchProgress(int done, int total)
{
    m_progress = total > 0 ? double(float(done) / float(total)) : 0;
    const QString percent = QStringLiteral("%1%").arg(m_progress * 100, 0, 'f', 1);
    showStatus(QStringLiteral("<right><p>") + percent + QStringLiteral("</p></right>"), percent);
}

void ProgressCell::reset()
{
    m_progress = -1;
    showStatus(QStringLiteral("<p></p>"), QString());
}

void ProgressCell::showMessage(const QString &text)
{
    m_progress = 0;
    showStatus(QStringLiteral("<p><![CDATA[") + text + QStringLiteral("]]></p>"), text);
}

void ProgressCell::showErrorMessage(const QString &text) { showMessage(qtTrId("update_error").arg(text)); }

void ProgressCell::enableCancel()
{
    if (m_cancelEnabled)
        return;
    m_cancelEnabled = true;
    emit changed();
}

void ProgressCell::disableCancel()
{
    if (!m_cancelEnabled)
        return;
    m_cancelEnabled = false;
    emit changed();
}

void ProgressCell::cancelButtonTouched()
{
    if (!m_cancelEnabled)
        return;
    m_progress = 0;
    emit changed();
    if (onCancel)
        onCancel();
}
