# What `cmake --install` puts where. README, docs/ and examples/ keep their places relative to each other, so that
# their links hold.
include(GNUInstallDirs)
set(TRELM_GUIDES ${PROJECT_BINARY_DIR}/tools)

install(TARGETS trelm)
install(FILES ${TRELM_GUIDES}/trelm.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${TRELM_GUIDES}/trelm.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        RENAME trelm)
install(FILES ${TRELM_GUIDES}/_trelm DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES README.md CHANGELOG.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR} PATTERN __pycache__ EXCLUDE)
