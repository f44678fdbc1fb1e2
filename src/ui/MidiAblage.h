#pragma once
// Files dragged onto the main window or named when starting it: a MIDI file opens, anything else
// gets a German message.
#include <QObject>
#include <QString>

#include <functional>

namespace lyrabo {

class MidiAblage : public QObject {
public:
    MidiAblage(QObject* eltern, std::function<void(const QString& pfad)> oeffnen,
               std::function<void(const QString& text)> meldung);

    // The message for a dropped file that is not a MIDI file.
    static QString keineMidiDatei(const QString& name);
    // A file handed over by a drop or on the command line: a MIDI file is opened, any other told why not.
    static void annehmen(const QString& pfad, const std::function<void(const QString&)>& oeffnen,
                         const std::function<void(const QString&)>& meldung);

protected:
    bool eventFilter(QObject* ziel, QEvent* ereignis) override;

private:
    std::function<void(const QString&)> m_oeffnen;
    std::function<void(const QString&)> m_meldung;
};

} // namespace lyrabo
