# Where it is asked for: this target counts how often each of its lines is run. One thread, so no atomic steps.
function(ombrix_counted target)
  if(OMBRIX_COVERAGE)
    target_compile_options(${target} PRIVATE --coverage -fprofile-update=single)
  endif()
endfunction()

# This program leaves its counts however it ends itself.
function(ombrix_leaves_counts program)
  if(OMBRIX_COVERAGE)
    target_sources(${program} PRIVATE ${CMAKE_SOURCE_DIR}/cmake/counted_end.cpp)
  endif()
endfunction()

# One static library for each folder of src/, named ombrix_<folder>. Headers are included as "folder/file.h".
function(ombrix_folder folder)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp)
  add_library(ombrix_${folder} STATIC ${sources})
  target_include_directories(ombrix_${folder} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(ombrix_${folder} PUBLIC ${ARGN})
  ombrix_counted(ombrix_${folder})
endfunction()
