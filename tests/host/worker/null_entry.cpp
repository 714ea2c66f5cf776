extern "C" void *worker_create(const char *, void *)
{
    return nullptr;
}
