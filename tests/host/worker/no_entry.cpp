extern "C" int worker_something_else()
{
    return 0;
}
