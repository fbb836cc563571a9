/* A DLL that needs nothing but the C runtime: the least that loading one can cost. */

__declspec(dllexport) int Answer(void)
{
    return 42;
}
