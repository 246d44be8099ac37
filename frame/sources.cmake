target_sources(tq_objects PRIVATE
    frame/array_storage.cpp
    frame/isa.cpp
    frame/memory_auto.cpp
    frame/memory_manager.cpp
    frame/module.cpp
    frame/platform.cpp
    frame/tables.cpp
    frame/thread_pool.cpp
    frame/thread_wrappers.cpp
    frame/version.cpp
    $<IF:$<PLATFORM_ID:Windows>,frame/platform_win32.cpp,frame/platform_posix.cpp>)
