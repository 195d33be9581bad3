#include "backgroundrelease.h"

#include <QThreadPool>

#include <malloc.h>
#include <utility>

void returnFreeMemory()
{
    releaseInBackground(nullptr);
}

void releaseInBackground(std::shared_ptr<void> object)
{
    QThreadPool::globalInstance()->start([object = std::move(object)]() mutable {
        object.reset();
        (void)malloc_trim(0);
    });
}
