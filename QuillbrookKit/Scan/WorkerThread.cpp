#include "Scan/WorkerThread.h"

#include <utility>

namespace Quillbrook {

namespace {

constexpr size_t stackBytes = 1048576;

void *runWork(void *work)
{
    (*static_cast<std::function<void()> *>(work))();
    return nullptr;
}

} // namespace

WorkerThread::WorkerThread(std::function<void()> work)
    : m_work(std::move(work))
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, stackBytes);
    m_hasStarted = pthread_create(&m_thread, &attributes, runWork, &m_work) == 0;
    pthread_attr_destroy(&attributes);
}

WorkerThread::~WorkerThread()
{
    if (m_hasStarted)
        pthread_join(m_thread, nullptr);
}

} // namespace Quillbrook
