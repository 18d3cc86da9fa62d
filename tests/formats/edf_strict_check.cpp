// An outside, strict EDF+/BDF+ reader for the tests: opens a file with the Debian library
// libedf and prints what it reads, or why it refuses the file.
//   edf_strict_check FILE
// Output: "ok <filetype> <records> <signals> <annotations>", then per signal
// "signal <label> <samples> <sum>", then per annotation "annotation <onset 100 ns> <text>".
// A refused file prints "refused <error code>" and exits 1.
#include <edflib.h>

#include <cstdio>
#include <string>
#include <vector>

int main(int argc, char* argv[])
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: edf_strict_check FILE\n");
        return 2;
    }
    edf_hdr_struct header {};
    if (edfopen_file_readonly(argv[1], &header, EDFLIB_READ_ALL_ANNOTATIONS) < 0) {
        std::printf("refused %d\n", header.filetype);
        return 1;
    }
    std::printf("ok %d %lld %d %lld\n", header.filetype, header.datarecords_in_file, header.edfsignals,
                header.annotations_in_file);
    for (int s = 0; s < header.edfsignals; ++s) {
        const edf_param_struct& signal = header.signalparam[s];
        std::vector<double> samples(size_t(signal.smp_in_file));
        const int read = samples.empty() ? 0 : edfread_physical_samples(header.handle, s, int(samples.size()), samples.data());
        double sum = 0;
        for (int i = 0; i < read; ++i)
            sum += samples[size_t(i)];
        std::string label(signal.label); // blank-padded in the header
        label.erase(label.find_last_not_of(' ') + 1);
        std::printf("signal %s %d %.3f\n", label.c_str(), read, sum);
    }
    for (long long n = 0; n < header.annotations_in_file; ++n) {
        edf_annotation_struct annotation {};
        if (edf_get_annotation(header.handle, int(n), &annotation) == 0)
            std::printf("annotation %lld %s\n", annotation.onset, annotation.annotation);
    }
    edfclose_file(header.handle);
    return 0;
}
