# What "cmake --install" puts where, and the Debian package that "cpack -G DEB" makes of it. The program, the module and what belongs to
# them lie side by side, as they look for each other; the name in the path is a link to the program.
include(GNUInstallDirs)

set(home ${CMAKE_INSTALL_LIBDIR}/stagehost)
install(TARGETS stagehost calverincheck RUNTIME DESTINATION ${home})
install(TARGETS kxpCalverinScript logsE stagehostclock LIBRARY DESTINATION ${home})
file(RELATIVE_PATH program ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR}/stagehost/stagehost)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/link)
file(CREATE_LINK ${program} ${CMAKE_BINARY_DIR}/link/stagehost SYMBOLIC)
install(FILES ${CMAKE_BINARY_DIR}/link/stagehost DESTINATION ${CMAKE_INSTALL_BINDIR})

set(pages ${CMAKE_BINARY_DIR}/StageHost/pages)
install(FILES ${pages}/stagehost.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${pages}/stagehost.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME stagehost)
install(FILES ${pages}/_stagehost DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/stagehost)
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/stagehost
    PATTERN "*.cpp" EXCLUDE PATTERN "*.h" EXCLUDE PATTERN CMakeLists.txt EXCLUDE PATTERN projector EXCLUDE)
install(DIRECTORY CalverinScript.Sources/host/contract/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/calverinscript
    FILES_MATCHING PATTERN "*.h")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME stagehost)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The maintainers of Calverin Script <root@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "show host for the desk, with the module for scripted devices")
set(CPACK_PACKAGE_DESCRIPTION "Writes, checks and runs drivers of show devices in JavaScript: the module that a show host loads,\nand a small "
    "host for the desk that loads it.")
string(REPLACE ";" "" CPACK_PACKAGE_DESCRIPTION "${CPACK_PACKAGE_DESCRIPTION}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS libqt5svg5) # a plug-in, which no library names: it draws the icons
include(CPack)
