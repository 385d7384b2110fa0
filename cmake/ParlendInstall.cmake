# What cmake --install puts where: the programs, stripped, and what parlctl makes of its own description: manual pages
# and the completion of three shells.
include(GNUInstallDirs)

set(made ${CMAKE_BINARY_DIR}/share)
file(MAKE_DIRECTORY ${made})
set(files)

# parlend_made(FILE PROGRAM ARGUMENT...): a file that a program of this build prints.
function(parlend_made file program)
  add_custom_command(OUTPUT ${made}/${file}
    COMMAND ${program} ${ARGN} > ${made}/${file}
    DEPENDS ${program} VERBATIM)
  set(files ${files} ${made}/${file} PARENT_SCOPE)
endfunction()

foreach(noun ${PARLCTL_NOUNS} completion)
  parlend_made(parlctl-${noun}.1 parlctl manual ${noun})
endforeach()
parlend_made(parlctl.1 parlctl manual)
parlend_made(parlctl.bash parlctl completion bash)
parlend_made(_parlctl parlctl completion zsh)
parlend_made(parlctl.fish parlctl completion fish)
parlend_made(parlend.help parlend --help)
add_custom_command(OUTPUT ${made}/parlend.8
  COMMAND ${CMAKE_COMMAND} -DHELP=${made}/parlend.help -DPAGE=${made}/parlend.8 -DVERSION=${PROJECT_VERSION}
    -P ${CMAKE_SOURCE_DIR}/cmake/ParlendPage.cmake
  DEPENDS ${made}/parlend.help ${CMAKE_SOURCE_DIR}/cmake/ParlendPage.cmake VERBATIM)
add_custom_target(pages ALL DEPENDS ${files} ${made}/parlend.8)

install(CODE "set(CMAKE_INSTALL_DO_STRIP TRUE)")
install(TARGETS parlend parlctl RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY ${made}/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 FILES_MATCHING PATTERN "*.1")
install(FILES ${made}/parlend.8 DESTINATION ${CMAKE_INSTALL_MANDIR}/man8)
install(FILES ${made}/parlctl.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME parlctl)
install(FILES ${made}/_parlctl DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES ${made}/parlctl.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
