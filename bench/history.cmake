if(TARGET zentrik_history AND TARGET zentrik_tools)
  zentrik_bench(history LIBS zentrik_history zentrik_tools)
endif()
