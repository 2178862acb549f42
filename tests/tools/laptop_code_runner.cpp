// Answers the code rules of the laptop example as its script does, for Windows, which starts no scripts. A question for
// "wait" makes the file that WAITING names and is never answered.
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <thread>

int main()
{
    const std::string question{std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
    const auto asksFor = [&question](const char* word) { return question.find(word) != std::string::npos; };
    if (asksFor("pixel")) {
        return 0;
    }
    if (asksFor("keyboard")) {
        return 1;
    }
    const char* const waiting = std::getenv("WAITING");
    if (asksFor("wait") && waiting != nullptr) {
        std::ofstream(waiting).flush();
        std::this_thread::sleep_for(std::chrono::minutes(10));
    }
    std::cerr << "no such test: " << question << '\n';
    return 2;
}
