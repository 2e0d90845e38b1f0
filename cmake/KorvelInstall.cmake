# What `cmake --install` lays out (the programs; the desktop entry, icon, project file
# type, software-centre description and manual pages) and the Debian package CPack makes.
include(GNUInstallDirs)

set(KORVEL_DESKTOP_ID io.korvel.Studio)
set(KORVEL_DEB_NAME korvel-studio)
set(KORVEL_DEB_RELEASE 1 CACHE STRING "Debian revision of the korvel-studio package")
set(KORVEL_PACKAGE_MAINTAINER "Korvel Studio developers <packages@korvel.io>"
    CACHE STRING "Maintainer named in the Debian package")
set(korvel_packaging ${PROJECT_SOURCE_DIR}/packaging)

# Programs. Stripping happens when the package is made (CPACK_STRIP_FILES).
foreach(korvel_program korvel korvel-mcp)
    if(TARGET ${korvel_program})
        install(TARGETS ${korvel_program}
            RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT programs)
    endif()
endforeach()

# Desktop integration, named by the one desktop id throughout.
set(korvel_data ${CMAKE_INSTALL_DATAROOTDIR})
install(FILES ${korvel_packaging}/${KORVEL_DESKTOP_ID}.desktop
    DESTINATION ${korvel_data}/applications COMPONENT desktop)
install(FILES ${korvel_packaging}/${KORVEL_DESKTOP_ID}.svg
    DESTINATION ${korvel_data}/icons/hicolor/scalable/apps COMPONENT desktop)
install(FILES ${korvel_packaging}/${KORVEL_DESKTOP_ID}.xml
    DESTINATION ${korvel_data}/mime/packages COMPONENT desktop)
install(FILES ${korvel_packaging}/${KORVEL_DESKTOP_ID}.metainfo.xml
    DESTINATION ${korvel_data}/metainfo COMPONENT desktop)

# Manual pages and the Debian changelog go compressed the way Debian wants them
# (gzip -9n: best compression, no name or time stamp, so builds are reproducible).
find_program(KORVEL_GZIP gzip REQUIRED)
set(korvel_compressed ${CMAKE_BINARY_DIR}/packaging)
file(MAKE_DIRECTORY ${korvel_compressed})
function(korvel_gzip source target)
    set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND
        PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
    execute_process(COMMAND ${KORVEL_GZIP} -9n -c ${source}
        OUTPUT_FILE ${korvel_compressed}/${target} COMMAND_ERROR_IS_FATAL ANY)
endfunction()
foreach(korvel_page korvel korvel-mcp)
    set(korvel_manual ${korvel_compressed}/${korvel_page}.1)
    configure_file(${korvel_packaging}/${korvel_page}.1.in ${korvel_manual} @ONLY)
    korvel_gzip(${korvel_manual} ${korvel_page}.1.gz)
    install(FILES ${korvel_manual}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT desktop)
endforeach()
korvel_gzip(${korvel_packaging}/changelog changelog.Debian.gz)
set(korvel_docs ${korvel_data}/doc/${KORVEL_DEB_NAME})
install(FILES ${korvel_packaging}/copyright ${korvel_compressed}/changelog.Debian.gz
    DESTINATION ${korvel_docs} COMPONENT desktop)

# The changelog's newest entry names the version being packaged.
file(STRINGS ${korvel_packaging}/changelog korvel_newest LIMIT_COUNT 1)
set(KORVEL_DEB_VERSION ${PROJECT_VERSION}-${KORVEL_DEB_RELEASE})
if(NOT korvel_newest MATCHES "^${KORVEL_DEB_NAME} \\(${KORVEL_DEB_VERSION}\\)")
    message(WARNING "packaging/changelog has no entry for ${KORVEL_DEB_VERSION} at its top; "
                    "add one before making the package.")
endif()

# The Debian package: ./dev package runs `cpack -G DEB` in the build folder.
set(CPACK_PACKAGE_NAME ${KORVEL_DEB_NAME})
set(CPACK_PACKAGE_VENDOR "Korvel Studio developers")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT ${KORVEL_PACKAGE_MAINTAINER})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${KORVEL_DEB_RELEASE})
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${KORVEL_PACKAGE_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Sketch text stands in Liberation's families for Arial, Times New Roman and Courier New.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS fonts-liberation2)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "parametric CAD for makers and small workshops")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION [[
Korvel Studio draws constrained sketches and turns them into solids with
history-based features: extrude, revolve, sweep and loft, fillets, chamfers,
shells, holes and threads, patterns and booleans. It works with sheet metal,
assemblies and scans, prepares CAM toolpaths and G-code, nests flat parts,
and exchanges STEP, STL, DXF, SVG and PDF files.

AI agents drive the open window, or work without one, over the Model
Context Protocol through korvel-mcp.]])
include(CPack)
