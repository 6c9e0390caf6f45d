# Manual pages and the completions of the shells, made when the project is installed with them.
option(OSTREVAN_MANUAL "Make and install manual pages; needs lowdown" OFF)

install(FILES ${PROJECT_SOURCE_DIR}/scripts/completions/ostrevan.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
  RENAME ostrevan)
install(FILES ${PROJECT_SOURCE_DIR}/scripts/completions/_ostrevan DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
install(FILES ${PROJECT_SOURCE_DIR}/scripts/completions/ostrevan.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)

if(OSTREVAN_MANUAL)
  find_program(LOWDOWN lowdown REQUIRED)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/manual)
  # The program writes the pages of its commands, from the same texts as its help.
  add_custom_command(OUTPUT ${folder}/.made DEPENDS ostrevan ${PROJECT_SOURCE_DIR}/scripts/make-manual.sh
      ${PROJECT_SOURCE_DIR}/docs/query-language.md ${PROJECT_SOURCE_DIR}/docs/title-formatting.md
    COMMAND ${PROJECT_SOURCE_DIR}/scripts/make-manual.sh $<TARGET_FILE:ostrevan> ${LOWDOWN} ${folder}
    COMMAND ${CMAKE_COMMAND} -E touch ${folder}/.made)
  add_custom_target(manual ALL DEPENDS ${folder}/.made)
  install(DIRECTORY ${folder}/ DESTINATION ${CMAKE_INSTALL_MANDIR} FILES_MATCHING PATTERN "*.[17]")
endif()
