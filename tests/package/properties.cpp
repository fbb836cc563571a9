// properties FILE: the version information of a program or DLL, as its properties show it.

#include <iostream>
#include <string>
#include <vector>
#include <windows.h>

int main(int, char** arguments)
{
    const DWORD size = ::GetFileVersionInfoSizeA(arguments[1], nullptr);
    std::vector<char> block(size);
    if (size == 0 || !::GetFileVersionInfoA(arguments[1], 0, size, block.data()))
        return 1;

    struct
    {
        WORD language;
        WORD codePage;
    }* translation = nullptr;

    void* text = nullptr;
    UINT length = 0;
    if (!::VerQueryValueA(block.data(), R"(\VarFileInfo\Translation)", reinterpret_cast<void**>(&translation), &length))
        return 2;
    for (const char* name : {"ProductName", "ProductVersion", "FileVersion", "FileDescription", "CompanyName"}) {
        char key[80];
        std::snprintf(key, sizeof(key), R"(\StringFileInfo\%04x%04x\%s)", translation->language, translation->codePage,
                      name);
        if (!::VerQueryValueA(block.data(), key, &text, &length))
            return 3;
        std::cout << name << ": " << static_cast<const char*>(text) << '\n';
    }
    return 0;
}
