#include "tests/support/decimal_comma.h"

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "tests/support/process.h"

DecimalComma::DecimalComma()
{
    mFolder = (std::filesystem::temp_directory_path() / "arborist-locale-XXXXXX").string();
    if (mkdtemp(mFolder.data()) == nullptr) {
        throw std::runtime_error("mkdtemp " + mFolder);
    }
    std::ofstream(mFolder + "/comma")
        << "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\ngrouping 3;3\nEND LC_NUMERIC\n";
    // The option -c continues after warnings about categories that the source lacks, which are taken from "C".
    RunProcess({"sh", "-c", "localedef -c -i comma -f UTF-8 ./comma.UTF-8"}, {.directory = mFolder});
    setenv("LOCPATH", mFolder.c_str(), 1);
    mIsSet = std::setlocale(LC_NUMERIC, "comma.UTF-8") != nullptr;
}

DecimalComma::~DecimalComma()
{
    std::setlocale(LC_NUMERIC, "C");
    unsetenv("LOCPATH");
    std::error_code ignored;
    std::filesystem::remove_all(mFolder, ignored);
}
