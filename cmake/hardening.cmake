# How every program is hardened, the everyday build like the one that is shipped, so that what the suite tests is what
# stands at the meter. Left out where addresses are checked, which does more and clashes, and where lines are counted.
#
# Position-independent: each run lies elsewhere in memory. The stack is guarded, calls of the C library know the size of
# what they fill, an index outside a container ends the program, and the table of functions is read-only once it has
# started. tests/hardening/hardening_test.cpp reads from the programs that it is so, also from those of the package.

if(NOT CMAKE_SYSTEM_NAME STREQUAL Linux OR OMBRIX_SANITIZE OR OMBRIX_FUZZ OR OMBRIX_COVERAGE)
  return()
endif()

set(CMAKE_POSITION_INDEPENDENT_CODE ON)
include(CheckPIESupported)
check_pie_supported(LANGUAGES C CXX)

add_compile_options(-fstack-protector-strong)
# The checked calls are chosen by the optimiser; without it they are a warning.
add_compile_options("$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
add_compile_definitions($<$<COMPILE_LANGUAGE:CXX>:_GLIBCXX_ASSERTIONS>)
add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
