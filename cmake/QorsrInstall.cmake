# Install rules: the module at every level, static forms, headers, documentation, the CMake package and pkg-config files.
#
# Everything is found relative to where it lies, so an installed tree works under any prefix and may be moved afterwards.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/qorsr)

install(
  TARGETS qorcore qorcore_static qorsr qorsr_static
  EXPORT qorsrTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})

# The further levels are for the dynamic loader alone: no development link, no exported target.
list(LENGTH QORSR_LEVELS level_count)
if(level_count GREATER 1)
  list(SUBLIST QORSR_LEVELS 1 -1 further_levels)
  foreach(level IN LISTS further_levels)
    install(TARGETS qorsr-${level} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/glibc-hwcaps/${level} NAMELINK_SKIP)
  endforeach()
endif()

install(FILES ${PROJECT_SOURCE_DIR}/include/qorsr.h ${PROJECT_SOURCE_DIR}/include/qorsr_status.h ${PROJECT_SOURCE_DIR}/core/qorcore.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN "*.md")

# A manual page a function, where a Python is at hand to make them.
find_package(Python3 3.9 COMPONENTS Interpreter QUIET)
if(Python3_FOUND)
  set(interface ${PROJECT_SOURCE_DIR}/scripts/interface)
  set(manual ${PROJECT_BINARY_DIR}/man)
  add_custom_command(
    OUTPUT ${manual}/man7/qorsr.7
    COMMAND ${Python3_EXECUTABLE} -B ${interface}/manual_pages.py ${PROJECT_SOURCE_DIR}/include/qorsr.h ${manual}
    DEPENDS ${PROJECT_SOURCE_DIR}/include/qorsr.h ${interface}/manual_pages.py ${interface}/description.py ${interface}/formula.py
            ${interface}/header.py
    VERBATIM)
  add_custom_target(qorsr_manual ALL DEPENDS ${manual}/man7/qorsr.7)
  install(DIRECTORY ${manual}/ DESTINATION ${CMAKE_INSTALL_MANDIR})
endif()

install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN "*.c" PATTERN "*.md")

# find_package(qorsr): qorsr::qorsr, qorsr::qorcore, qorsr::qorsr_static, qorsr::qorcore_static
install(EXPORT qorsrTargets NAMESPACE qorsr:: DESTINATION ${package_dir})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/qorsrConfig.cmake.in ${PROJECT_BINARY_DIR}/qorsrConfig.cmake
                              INSTALL_DESTINATION ${package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qorsrConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/qorsrConfig.cmake ${PROJECT_BINARY_DIR}/qorsrConfigVersion.cmake DESTINATION ${package_dir})

# pkg-config: the prefix is wherever the .pc file lies, so many folders up.
file(RELATIVE_PATH prefix_from_pc /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" prefix_from_pc "${prefix_from_pc}")
foreach(name qorsr qorcore)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
