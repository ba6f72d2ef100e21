if(TARGET zentrik_chat)
  zentrik_bench(sse LIBS zentrik_chat zentrik_net)
endif()
