# Installation and the Debian package. The programs go to bin/, what they read to share/lyrabo/
# (found there as ../share/lyrabo from the program), the desktop's files to their usual places.
# Tests, benchmarks, fuzz targets and tools are not installed.
include(GNUInstallDirs)

foreach(programm lyrabo lyrabo-cli)
  if(TARGET ${programm})
    install(TARGETS ${programm} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endforeach()
set(LYRABO_TEILEN ${CMAKE_INSTALL_DATADIR}/lyrabo)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/ini/ DESTINATION ${LYRABO_TEILEN}/ini PATTERN .gitattributes EXCLUDE)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/data/schriften DESTINATION ${LYRABO_TEILEN}/data)
install(FILES ${CMAKE_SOURCE_DIR}/data/de.lyrabo.Lyrabo.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${CMAKE_SOURCE_DIR}/data/lyrabo.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES ${CMAKE_SOURCE_DIR}/data/de.lyrabo.Lyrabo.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

# Debian wants the copyright, a changelog and the manual pages, compressed to the maximum and
# without a time stamp.
find_program(LYRABO_GZIP gzip)
if(LYRABO_GZIP)
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/paket)
  foreach(datei changelog lyrabo.1 lyrabo-cli.1)
    execute_process(COMMAND ${LYRABO_GZIP} -9nc ${CMAKE_SOURCE_DIR}/paket/${datei}
                    OUTPUT_FILE ${CMAKE_BINARY_DIR}/paket/${datei}.gz)
  endforeach()
  install(FILES ${CMAKE_SOURCE_DIR}/paket/copyright ${CMAKE_BINARY_DIR}/paket/changelog.gz
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/lyrabo)
  install(FILES ${CMAKE_BINARY_DIR}/paket/lyrabo.1.gz ${CMAKE_BINARY_DIR}/paket/lyrabo-cli.1.gz
          DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lyrabo)
set(CPACK_PACKAGE_VENDOR "Lyrabo-Team")
set(CPACK_PACKAGE_CONTACT "Lyrabo-Team <lyrabo@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Notenblätter für die Tischharfe aus MIDI-Dateien")
# Lines of the extended description stay under 80 characters.
set(CPACK_PACKAGE_DESCRIPTION "\
Lyrabo macht aus einer Standard-MIDI-Datei Notenblätter für eine Tischharfe
mit 37 oder 25 Saiten: jede Note steht in der Spalte der Saite, die sie
spielt, und das Blatt wird unter die Saiten gelegt. Lyrabo zeigt Spuren und
Ereignisse, mischt Spuren, transponiert und quantisiert, druckt das Blatt in
Originalgröße oder speichert es als PDF und schreibt eine Works-Datenbank und
einen Harfen-Text. Dazu gehört lyrabo-cli für die Kommandozeile.

Lyrabo turns a standard MIDI file into note sheets for a table harp of 37 or
25 strings, each note in the column of the string that plays it, printed at
full size to lie under the strings. The user interface is German.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://lyrabo.example.org/")
# Qt, RtMidi and FluidSynth come from the libraries the programs link; the sound font they load
# is asked for by name.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "timgm6mb-soundfont | fluid-soundfont-gm")
include(CPack)
