# What "cmake --install" puts where, and the Debian package of it. The build's target "installed"
# makes all that is installed and nothing else.

include(GNUInstallDirs)
get_property(companions GLOBAL PROPERTY TERVOXAL_COMPANIONS)
set(commands tervoxal ${companions})
set(documentation share/doc/tervoxal)
set(completions share/bash-completion/completions)

find_program(GZIP gzip REQUIRED)
set(compressed)
# Compresses a file to the build directory, as the same bytes each time, and installs it.
function(install_compressed file name destination)
  set(output ${CMAKE_CURRENT_BINARY_DIR}/installed/${name}.gz)
  add_custom_command(OUTPUT ${output}
    COMMAND ${GZIP} -9nc ${CMAKE_CURRENT_SOURCE_DIR}/${file} > ${output}
    DEPENDS ${file} VERBATIM)
  install(FILES ${output} DESTINATION ${destination})
  set(compressed ${compressed} ${output} PARENT_SCOPE)
endfunction()
file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/installed)

install(TARGETS ${commands} RUNTIME)
foreach(command ${commands})
  install_compressed(docs/man/${command}.1 ${command}.1 ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()
install_compressed(packaging/changelog changelog ${documentation})
install(FILES README.md packaging/copyright DESTINATION ${documentation})
install(DIRECTORY docs examples DESTINATION ${documentation}
  PATTERN man EXCLUDE
  PATTERN *.cnf EXCLUDE PATTERN *.lck EXCLUDE)
# bash looks completion up by the name of the command.
install(FILES completion/tervoxal.bash DESTINATION ${completions} RENAME tervoxal)
foreach(command ${companions})
  install(CODE "file(CREATE_LINK tervoxal
    \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${completions}/${command}\" SYMBOLIC)")
endforeach()
install(FILES completion/_tervoxal DESTINATION share/zsh/vendor-completions)

add_custom_target(installed ALL DEPENDS ${commands} ${compressed})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "tervoxal maintainers <maintainers@tervoxal.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "SAT-based bounded model check of networks of automata")
set(CPACK_PACKAGE_DESCRIPTION
"tervoxal reads a network of automata, a property of its states and a path
length, and writes clauses that are satisfiable exactly when a path of that
length meets the property. Its companions search for the shortest path with a
SAT solver of their own or with any other, let model checkers prove that there
is none and check the proof, replay and draw the path, check the input, and
import Petri nets and labelled transition systems.")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION math)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS procps)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "minisat | cadical, graphviz")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "berkeley-abc | yosys-abc, gtkwave")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
