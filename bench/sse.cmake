if(TARGET zentrik_model)
  zentrik_bench(sse LIBS zentrik_model zentrik_net)
endif()
