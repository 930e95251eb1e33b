# For developers: cmake --build build --target lint. The suite needs none of it but the arrows, which it checks itself.
add_custom_target(lint
  COMMAND ${CMAKE_SOURCE_DIR}/cmake/lint.sh ${CMAKE_SOURCE_DIR} ${CMAKE_BINARY_DIR}
  USES_TERMINAL VERBATIM)
