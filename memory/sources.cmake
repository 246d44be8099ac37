target_sources(tq_objects PRIVATE
    memory/clear.cpp
    memory/copy.cpp
    memory/copy_multithread.cpp)
