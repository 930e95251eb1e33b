# Runs the tests that FILTER names, as one run. Fails when a pattern of it matches no test: a suite that got another name
# would else drop out unseen.
#   cmake -DPROGRAM=<tests> -DFILTER=<pattern:pattern...> -P german_run.cmake

cmake_minimum_required(VERSION 3.25)

string(REPLACE ":" ";" patterns "${FILTER}")
set(wrong "")
foreach(pattern ${patterns})
  execute_process(COMMAND ${PROGRAM} --gtest_list_tests --gtest_filter=${pattern}
    OUTPUT_VARIABLE names ERROR_QUIET RESULT_VARIABLE code)
  if(NOT code EQUAL 0 OR NOT names MATCHES "\n  ")
    string(APPEND wrong "  ${pattern}: matches no test of ${PROGRAM}\n")
  endif()
endforeach()
if(wrong OR NOT patterns)
  message(FATAL_ERROR "Filters of the second run:\n${wrong}")
endif()

execute_process(COMMAND ${PROGRAM} --gtest_filter=${FILTER} RESULT_VARIABLE code)
if(NOT code EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} ended with ${code}")
endif()
