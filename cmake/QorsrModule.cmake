# qorsr_add_levels(<stem> ... [BASELINE_SOURCES ...]): one shared module a level, laid out as the dynamic loader expects it:
#   lib/lib<stem>.so.6                              the baseline
#   lib/glibc-hwcaps/<level>/lib<stem>.so.6         the same module for processors that have <level>
# The loader picks the best by itself, in the build tree too. The baseline target is <stem>, the others <stem>-<level>.
# BASELINE_SOURCES stand in for SOURCES at the baseline: objects that are compiled for the static library anyhow.
function(qorsr_add_levels stem)
  cmake_parse_arguments(arg "" "" "SOURCES;BASELINE_SOURCES;LIBRARIES;OPTIONS;LINK_OPTIONS" ${ARGN})
  list(GET QORSR_LEVELS 0 baseline)
  foreach(level IN LISTS QORSR_LEVELS)
    set(sources ${arg_SOURCES})
    if(level STREQUAL baseline)
      if(arg_BASELINE_SOURCES)
        set(sources ${arg_BASELINE_SOURCES})
      endif()
      set(target ${stem})
      set(folder ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
      set(rpath "$ORIGIN")
    else()
      set(target ${stem}-${level})
      set(folder ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/glibc-hwcaps/${level})
      set(rpath "$ORIGIN/../..")
    endif()
    add_library(${target} SHARED ${sources})
    set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX)
    set_target_properties(
      ${target}
      PROPERTIES OUTPUT_NAME ${stem}
                 LIBRARY_OUTPUT_DIRECTORY ${folder}
                 VERSION 6
                 SOVERSION 6
                 CXX_VISIBILITY_PRESET hidden
                 VISIBILITY_INLINES_HIDDEN ON
                 BUILD_WITH_INSTALL_RPATH ON
                 INSTALL_RPATH "${rpath}")
    target_compile_options(${target} PRIVATE ${QORSR_FLAGS_${level}} ${arg_OPTIONS})
    target_link_options(${target} PRIVATE ${arg_LINK_OPTIONS})
    target_link_libraries(${target} PRIVATE ${arg_LIBRARIES})
  endforeach()
endfunction()
