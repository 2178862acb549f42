#ifndef ARBORIST_FRAME_THREAD_VALUE_H
#define ARBORIST_FRAME_THREAD_VALUE_H

#if defined(__MINGW32__)
#include <memory>

#include <pthread.h>
#endif

/// A value of its own for each thread, created at the first call of the thread and destroyed when it ends. `Name`, any
/// type, tells apart values of one type.
///
/// Used instead of thread_local for values with a destructor: the compiler for Windows frees the memory of a thread
/// first and calls the destructors then.
#if defined(__MINGW32__)

template <typename Value, typename Name>
Value& ValueOfThread()
{
    static const pthread_key_t key = [] {
        pthread_key_t created;
        pthread_key_create(&created, [](void* value) { delete static_cast<Value*>(value); });
        return created;
    }();
    if (void* const value = pthread_getspecific(key)) {
        return *static_cast<Value*>(value);
    }
    auto value = std::make_unique<Value>();
    pthread_setspecific(key, value.get());
    return *value.release();
}

#else

template <typename Value, typename Name>
Value& ValueOfThread()
{
    thread_local Value value;
    return value;
}

#endif

#endif
