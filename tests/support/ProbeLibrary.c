/* A library for the tests to load. */
int probe_answer(void)
{
    return 42;
}
