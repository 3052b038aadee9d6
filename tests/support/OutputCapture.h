#pragma once

#include <string>

/// Collects what the process writes to a standard stream, from construction to text(). One at a
/// time.
class OutputCapture
{
public:
    enum Stream
    {
        eStdout = 1,
        eStderr = 2
    };

    explicit OutputCapture(Stream stream = eStdout);
    ~OutputCapture();
    OutputCapture(const OutputCapture&) = delete;
    OutputCapture& operator=(const OutputCapture&) = delete;

    /// Ends the capture. @return what was written
    std::string text();

private:
    void restore();

    int stream_;
    int saved_;
    int file_;
};

/// What a piece of code prints on standard output.
template <class Code>
std::string outputOf(Code code)
{
    OutputCapture capture;
    code();
    return capture.text();
}
