# The compiler's runtime libraries stand beside what needs them. They are shared: with one of its own in each library,
# exceptions would be of different makes on either side.
foreach(name libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
  execute_process(COMMAND "${CMAKE_CXX_COMPILER}" -print-file-name=${name}
    OUTPUT_VARIABLE found OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  file(COPY "${found}" DESTINATION "${CMAKE_BINARY_DIR}")
  list(APPEND PD_RUNTIME_LIBRARIES "${CMAKE_BINARY_DIR}/${name}")
endforeach()
install(FILES ${PD_RUNTIME_LIBRARIES} DESTINATION ${CMAKE_INSTALL_BINDIR})
