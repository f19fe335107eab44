/* Tells the race checker what GLib's locks, queues and sources order. Linked with --wrap in that build alone. */
#include <glib.h>

void __tsan_acquire(void *address);
void __tsan_release(void *address);

#define REAL(result, name, ...)        \
    result __real_##name(__VA_ARGS__); \
    result __wrap_##name(__VA_ARGS__); \
    result __wrap_##name(__VA_ARGS__)

REAL(void, g_mutex_lock, GMutex *mutex)
{
    __real_g_mutex_lock(mutex);
    __tsan_acquire(mutex);
}

REAL(void, g_mutex_unlock, GMutex *mutex)
{
    __tsan_release(mutex);
    __real_g_mutex_unlock(mutex);
}

REAL(gboolean, g_mutex_trylock, GMutex *mutex)
{
    const gboolean locked = __real_g_mutex_trylock(mutex);
    if (locked)
        __tsan_acquire(mutex);
    return locked;
}

REAL(gboolean, g_cond_wait_until, GCond *condition, GMutex *mutex, gint64 end)
{
    __tsan_release(mutex);
    const gboolean signalled = __real_g_cond_wait_until(condition, mutex, end);
    __tsan_acquire(mutex);
    return signalled;
}

REAL(void, g_async_queue_push, GAsyncQueue *queue, gpointer item)
{
    __tsan_release(queue);
    __real_g_async_queue_push(queue, item);
}

REAL(gpointer, g_async_queue_pop, GAsyncQueue *queue)
{
    gpointer item = __real_g_async_queue_pop(queue);
    __tsan_acquire(queue);
    return item;
}

REAL(gpointer, g_async_queue_try_pop, GAsyncQueue *queue)
{
    gpointer item = __real_g_async_queue_try_pop(queue);
    __tsan_acquire(queue);
    return item;
}

typedef struct {
    GSourceFunc function;
    gpointer data;
    GDestroyNotify notify;
} Call;

static gboolean runCall(gpointer data)
{
    Call *call = data;
    __tsan_acquire(call);
    return call->function(call->data);
}

static void freeCall(gpointer data)
{
    Call *call = data;
    if (call->notify)
        call->notify(call->data);
    g_free(call);
}

static Call *newCall(GSourceFunc function, gpointer data, GDestroyNotify notify)
{
    Call *call = g_new0(Call, 1);
    *call = (Call){function, data, notify};
    __tsan_release(call);
    return call;
}

REAL(guint, g_idle_add_full, gint priority, GSourceFunc function, gpointer data, GDestroyNotify notify)
{
    return __real_g_idle_add_full(priority, runCall, newCall(function, data, notify), freeCall);
}

REAL(guint, g_timeout_add_full, gint priority, guint ms, GSourceFunc function, gpointer data, GDestroyNotify notify)
{
    return __real_g_timeout_add_full(priority, ms, runCall, newCall(function, data, notify), freeCall);
}

REAL(guint, g_idle_add, GSourceFunc function, gpointer data)
{
    return __wrap_g_idle_add_full(G_PRIORITY_DEFAULT_IDLE, function, data, NULL);
}

REAL(guint, g_timeout_add, guint ms, GSourceFunc function, gpointer data)
{
    return __wrap_g_timeout_add_full(G_PRIORITY_DEFAULT, ms, function, data, NULL);
}
