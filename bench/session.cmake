# Not a Google Benchmark: one long session of the real window, its peak memory read twice.
if(TARGET zentrik_app AND TARGET zentrik_testsupport)
  add_executable(bench_session bench_session.cpp)
  target_link_libraries(bench_session PRIVATE zentrik_app zentrik_appplugin zentrik_testsupport)
endif()
