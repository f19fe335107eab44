# Only for the race checker: GLib's locks, queues and sources are invisible to it, so calls to them go through wrappers
# that tell it what they order.

target_sources(brindle_core PRIVATE ${CMAKE_CURRENT_LIST_DIR}/raceShim.c)
set_source_files_properties(${CMAKE_CURRENT_LIST_DIR}/raceShim.c PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
foreach(function IN ITEMS
        g_mutex_lock g_mutex_unlock g_mutex_trylock g_cond_wait_until
        g_async_queue_push g_async_queue_pop g_async_queue_try_pop
        g_idle_add g_idle_add_full g_timeout_add g_timeout_add_full)
    target_link_options(brindle_core PUBLIC LINKER:--wrap=${function})
endforeach()
