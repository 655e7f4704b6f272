# Install rules and the Debian package: `cmake --install` or `cpack -G DEB` in the build folder
# (scripts/build-package.sh does both steps for a release).
include(GNUInstallDirs)

set(ORBLINE_SHARE_DIR ${CMAKE_INSTALL_DATADIR}/kv-orbline)
set(ORBLINE_DOC_DIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/kv-orbline)
# systemd reads units from /lib/systemd/system on Debian; under another prefix (a trial
# install into a folder) they stay below it.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(ORBLINE_UNIT_DEFAULT /lib/systemd/system)
else()
    set(ORBLINE_UNIT_DEFAULT lib/systemd/system)
endif()
set(ORBLINE_SYSTEMD_UNIT_DIR ${ORBLINE_UNIT_DEFAULT} CACHE STRING "Folder of the systemd units")

install(TARGETS kv_orbline orderdb orderload RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES src/orders/schema.sql DESTINATION ${ORBLINE_SHARE_DIR})
install(FILES README.md DESTINATION ${ORBLINE_DOC_DIR})
install(DIRECTORY docs/ DESTINATION ${ORBLINE_DOC_DIR} FILES_MATCHING PATTERN "*.md")

if(NOT WIN32)
    install(TARGETS kv_simulator RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(DIRECTORY tools/simulator/scripts/ DESTINATION ${ORBLINE_SHARE_DIR}/simulator
            FILES_MATCHING PATTERN "*.sim")
    install(FILES packaging/systemd/kv-orbline@.service DESTINATION ${ORBLINE_SYSTEMD_UNIT_DIR})
    install(FILES packaging/systemd/0980-HA.conf.example
            DESTINATION ${ORBLINE_DOC_DIR}/examples RENAME 0980-HA.conf)
endif()

set(CPACK_PACKAGE_NAME kv-orbline)
# The package's own version; raise it with each release that goes to sites.
set(CPACK_PACKAGE_VERSION 1.0.0)
set(CPACK_PACKAGE_CONTACT "KV_Orbline developers <kv-orbline@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "Instrument link between laboratory analysers on serial lines and the laboratory system")
set(CPACK_PACKAGE_DESCRIPTION
    "One process per instrument takes its results off the RS-232C line, answers its order\n\
queries from an order store (SQLite, PostgreSQL or ODBC) and delivers result files to the\n\
laboratory system. Ships the systemd unit kv-orbline@.service (one instance per instrument),\n\
the order tools and the instrument simulator.")
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The SQL drivers are plugins Qt loads at run time, which shlibdeps cannot see (it finds Qt,
# libsystemd0 and the C++ runtime); useradd (passwd) makes the service user.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6sql6-sqlite, libqt6sql6-psql, libqt6sql6-odbc, passwd")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    ${CMAKE_CURRENT_LIST_DIR}/debian/postinst ${CMAKE_CURRENT_LIST_DIR}/debian/prerm
    ${CMAKE_CURRENT_LIST_DIR}/debian/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
