# What is installed besides programs and libraries, and the packages that ./package.sh makes of the install rules: a
# Debian package, or for Windows a zip file in which everything needed to run stands in one folder.

# install_compressed(DESTINATION FILE...): installs files compressed, as Debian wants man pages and change logs. One
# named NAME.md is installed as NAME.gz.
function(install_compressed destination)
  foreach(file ${ARGN})
    get_filename_component(name "${file}" NAME)
    string(REGEX REPLACE "\\.md$" "" name "${name}")
    string(TOLOWER "${name}.gz" name)
    set(compressed "${CMAKE_BINARY_DIR}/compressed/${name}")
    add_custom_command(OUTPUT "${compressed}" DEPENDS "${file}" VERBATIM
      COMMAND ${CMAKE_COMMAND} -E make_directory "${CMAKE_BINARY_DIR}/compressed"
      COMMAND sh -c "exec gzip -9nc \"$1\" >\"$2\"" gzip "${CMAKE_SOURCE_DIR}/${file}" "${compressed}")
    add_custom_target("compress-${name}" ALL DEPENDS "${compressed}")
    install(FILES "${compressed}" DESTINATION "${destination}")
  endforeach()
endfunction()

# install_licences(FOLDER PACKAGE...): the terms of what is compiled in, or stands beside the programs: of these Debian
# packages, and of the libraries of the console's page.
function(install_licences folder)
  foreach(package ${ARGN})
    install(FILES /usr/share/doc/${package}/copyright DESTINATION "${folder}" RENAME ${package}.txt)
  endforeach()
  file(GLOB licences CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/host/web/vendor/*.LICENSE")
  install(FILES ${licences} DESTINATION "${folder}")
endfunction()
set(PD_HEADER_LIBRARIES libboost-dev libcli11-dev nlohmann-json3-dev)

file(GLOB PD_DOCUMENTS CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/docs/*.md")

if(WIN32)
  install(FILES README.md CHANGELOG.md LICENSE DESTINATION .)
  install(FILES ${PD_DOCUMENTS} DESTINATION docs)
  install(DIRECTORY lab/profiles DESTINATION lab)
  install_licences(licences ${PD_HEADER_LIBRARIES} libc-ares-dev libsnmp-dev libsqlite3-dev libssl-dev
    gcc-mingw-w64-x86-64-posix-runtime mingw-w64-common)
else()
  set(PD_DOC_FOLDER "${CMAKE_INSTALL_DATADIR}/doc/printer-discovery")
  install(FILES README.md packaging/copyright DESTINATION "${PD_DOC_FOLDER}")
  install(FILES ${PD_DOCUMENTS} DESTINATION "${PD_DOC_FOLDER}/docs")
  install_licences("${PD_DOC_FOLDER}/licences" ${PD_HEADER_LIBRARIES})
  install(DIRECTORY lab/profiles DESTINATION "${CMAKE_INSTALL_DATADIR}/printer-discovery/lab")
  configure_file(packaging/printer-discovery.service.in printer-discovery.service @ONLY)
  install(FILES "${CMAKE_BINARY_DIR}/printer-discovery.service" DESTINATION lib/systemd/system)
  install_compressed("${CMAKE_INSTALL_MANDIR}/man1" docs/man/printer-discovery.1 docs/man/printer-lab.1)
  install_compressed("${PD_DOC_FOLDER}" CHANGELOG.md)
  # Where zsh looks: packages and what an administrator installs have folders of their own.
  if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(PD_ZSH_FOLDER "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions")
  else()
    set(PD_ZSH_FOLDER "${CMAKE_INSTALL_DATADIR}/zsh/site-functions")
  endif()
  foreach(program printer-discovery printer-lab)
    install(FILES completion/${program}.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
      RENAME ${program})
    install(FILES completion/_${program} DESTINATION ${PD_ZSH_FOLDER})
  endforeach()
endif()

set(CPACK_PACKAGE_NAME printer-discovery)
set(CPACK_PACKAGE_VENDOR "Printer Discovery")
set(CPACK_PACKAGE_CONTACT "Printer Discovery maintainers <maintainers@printer-discovery.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "finds the printers of a network over SNMP")
set(CPACK_PACKAGE_DESCRIPTION "Sweeps IPv4 ranges over SNMP version 1, 2c and 3, recognises printers by their device table,
and reports description, MAC addresses, serial number and host name.
.
This package holds the program printer-discovery, the plug-in library that other programs can load with its
C header, and printer-lab, which answers as simulated printers on loopback addresses.")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME "printer-discovery-${PROJECT_VERSION}-windows-x64")
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION net)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_BINARY_DIR}")
  set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
  set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    "${CMAKE_SOURCE_DIR}/packaging/prerm" "${CMAKE_SOURCE_DIR}/packaging/postrm")
endif()
include(CPack)
