// Converting one track and building its harp events and text: the run behind every option change
// of the main window and behind the clipboard commands.
#include "app/core/CProgramm.h"

#include "engine/CKLNCreator.h"
#include "export/CWDBCreator.h"

namespace lyrabo {

void CProgramm::HarfeExportLauf(int16_t spur, bool mitAnzeige, bool mitHarfeText) {
    Einstellungen().TrackNr(spur);
    CKLNCreator& engine = KLNCreator();
    if (mitAnzeige) {
        m_form.DisplayTrack(spur);
        engine.findMinMax();
        engine.colorSpaltenLabels();
    }
    // The engine has reported its own error; the previous text stays.
    if (!engine.produce(true)) return;

    CWDBCreator& writer = WDBCreator();
    writer.Dialog(m_dialog);
    writer.Form(&m_form);
    // The engine works on the global collections handed to it when the file was opened.
    writer.Akkorde(engine.Akkorde());
    writer.KlangNoten(mitAnzeige ? KlangNoten : KlangNotenMix);
    writer.Pausen(engine.Pausen());
    writer.write_ExportColl();

    if (mitHarfeText) m_form.setKlangNotenText(engine.getHarfeEventString());
}

void CProgramm::neuBerechnen() {
    if (!Midifile1.geladen() || Midifile1.TrackCount() == 0) return;
    const int32_t spur = int32_t{m_form.ausgewaehlteSpurZeile()} + 1;
    if (spur < 1 || spur > Midifile1.TrackCount()) return;
    Midifile1.Track(spur);
    if (Midifile1.EventCount() == 0) return;

    CKLNCreator& engine = KLNCreator();
    engine.IsMonoton(true);
    Einstellungen().ClipExportFlags()->Item(8)->Value(1);
    engine.KlangNoten(KlangNoten);
    MIDIFileSetsESVarsFrmIntern(static_cast<int16_t>(spur));
    HarfeExportLauf(static_cast<int16_t>(spur), true, true);
}

} // namespace lyrabo
