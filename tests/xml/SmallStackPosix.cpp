#include "SmallStack.h"

#include <pthread.h>
#include <stdexcept>

namespace {

void* Run(void* function)
{
    (*static_cast<const std::function<void()>*>(function))();
    return nullptr;
}

} // namespace

void RunOnSmallStack(const std::function<void()>& function)
{
    std::function<void()> copy = function;
    pthread_attr_t attributes;
    pthread_t thread;
    if (pthread_attr_init(&attributes) != 0 || pthread_attr_setstacksize(&attributes, 256 * 1024) != 0 ||
        pthread_create(&thread, &attributes, Run, &copy) != 0 || pthread_join(thread, nullptr) != 0)
        throw std::runtime_error("no thread with a small stack");
    pthread_attr_destroy(&attributes);
}
