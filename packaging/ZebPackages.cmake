# The Debian packages: "cpack" in the build folder makes them all.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zebcli)
set(CPACK_PACKAGE_VENDOR "QUORVEL, Ltd.")
set(CPACK_PACKAGE_CONTACT "Quorvel storage tools <storage-tools@quorvel.example>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS ${CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_SOURCE_DIR}/ZebPackageTime.cmake)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/ZebPackageFolders.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL tool companion simulator recorder)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME zebcli)
set(CPACK_DEBIAN_TOOL_PACKAGE_SUGGESTS zebcli-simulator)
set(CPACK_DEBIAN_TOOL_PACKAGE_CONTROL_EXTRA
  ${CMAKE_CURRENT_SOURCE_DIR}/debian/conffiles ${CMAKE_CURRENT_SOURCE_DIR}/debian/postrm)
set(CPACK_COMPONENT_TOOL_DESCRIPTION "command-line tool for hardware RAID controllers
zebcli reports the state of RAID controllers, logical and physical drives,
enclosures and cache backup units, and changes it. It needs the controller
maker's StoreLib library, libstorelib.so, which is not part of this package.")

set(CPACK_DEBIAN_COMPANION_PACKAGE_NAME zebstat)
set(CPACK_DEBIAN_COMPANION_PACKAGE_SUGGESTS "zebcli, jq, prometheus-node-exporter")
foreach(script postinst prerm postrm)
  list(APPEND CPACK_DEBIAN_COMPANION_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/debian/companion/${script})
endforeach()
set(CPACK_COMPONENT_COMPANION_DESCRIPTION "facts about hardware RAID controllers, for programs
zebstat tells the state of RAID controllers as JSON with a schema, as metrics,
as the line of a monitoring plugin, and as progress bars, and waits for
background work. It changes nothing. A timer for the node exporter, alert rules
for Prometheus and a fact for Ansible come with it, off until enabled. It needs
the controller maker's StoreLib library, libstorelib.so, which is not part of
this package.")

set(CPACK_DEBIAN_SIMULATOR_PACKAGE_NAME zebcli-simulator)
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_DEPENDS "zebcli (>= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_SIMULATOR_DESCRIPTION "simulated RAID controllers for zebcli
A libstorelib.so with no hardware behind it, scenarios for it, and the command
zebcli-sim, which runs zebcli with it. For trying the tool and for testing
scripts that use it.")

set(CPACK_DEBIAN_RECORDER_PACKAGE_NAME zebcli-recorder)
set(CPACK_DEBIAN_RECORDER_PACKAGE_DEPENDS "zebcli (>= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_RECORDER_PACKAGE_SUGGESTS zebcli-simulator)
set(CPACK_COMPONENT_RECORDER_DESCRIPTION "record, preview and replay of zebcli's requests
A libstorelib.so that stands between a command and the real library:
zebcli-record keeps what was asked and answered, zebcli-preview shows what a
command would change, zebcli-probe tells whether the record layouts fit the
real library, and zebcli-replay runs a command against a recording, for which
it needs zebcli-simulator.")

include(CPack)
