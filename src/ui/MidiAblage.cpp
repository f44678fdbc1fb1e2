#include "ui/MidiAblage.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

namespace lyrabo {

namespace {

QString ersteDatei(const QMimeData* daten) {
    if (!daten || !daten->hasUrls()) return {};
    for (const QUrl& url : daten->urls())
        if (url.isLocalFile()) return url.toLocalFile();
    return {};
}

} // namespace

MidiAblage::MidiAblage(QObject* eltern, std::function<void(const QString&)> oeffnen,
                       std::function<void(const QString&)> meldung)
    : QObject(eltern), m_oeffnen(std::move(oeffnen)), m_meldung(std::move(meldung)) {}

QString MidiAblage::keineMidiDatei(const QString& name) {
    return QStringLiteral("„%1“ ist keine MIDI-Datei. Lyrabo öffnet nur Dateien mit der Endung .mid.").arg(name);
}

bool MidiAblage::eventFilter(QObject* ziel, QEvent* ereignis) {
    if (ereignis->type() == QEvent::DragEnter || ereignis->type() == QEvent::DragMove) {
        auto* zug = static_cast<QDragMoveEvent*>(ereignis);
        // Every local file is taken, so that a wrong one can be told why it does not open.
        if (ersteDatei(zug->mimeData()).isEmpty()) return false;
        zug->acceptProposedAction();
        return true;
    }
    if (ereignis->type() != QEvent::Drop) return QObject::eventFilter(ziel, ereignis);
    auto* ablage = static_cast<QDropEvent*>(ereignis);
    const QString pfad = ersteDatei(ablage->mimeData());
    if (pfad.isEmpty()) return false;
    ablage->acceptProposedAction();
    annehmen(pfad, m_oeffnen, m_meldung);
    return true;
}

void MidiAblage::annehmen(const QString& pfad, const std::function<void(const QString&)>& oeffnen,
                          const std::function<void(const QString&)>& meldung) {
    // The file dialog's filter, as FileOpen offers it.
    if (QFileInfo(pfad).suffix().compare(QStringLiteral("mid"), Qt::CaseInsensitive) == 0)
        oeffnen(pfad);
    else
        meldung(keineMidiDatei(QFileInfo(pfad).fileName()));
}

} // namespace lyrabo
