// The IGES file layout shared by the reader, the converters and the writers.
#pragma once

#include <cstdint>

namespace kw::iges {

// Every record is 80 columns: data, then the section letter in column 73
// and the sequence number in columns 74 to 80.
inline constexpr int kRecord = 80;
inline constexpr int kLetter = 72;     // index of the section letter
inline constexpr int kData = 72;       // data columns of Start, Global and Terminate records
inline constexpr int kParamData = 64;  // data columns of a Parameter Data record
inline constexpr int kBackPointer = 65;  // index of the Directory pointer of a Parameter Data record
inline constexpr int kSequence = 73;   // index of the sequence number
inline constexpr int kField = 8;       // width of a Directory Entry field and a sequence number
inline constexpr int kSequenceWidth = 7;

// Sections in file order.
enum Section { kStart, kGlobal, kDirectory, kParameter, kTerminate, kSections };
inline constexpr char kSectionLetter[kSections] = {'S', 'G', 'D', 'P', 'T'};

// Default delimiters, used when the Global section leaves them empty.
inline constexpr char kParamDelimiter = ',';
inline constexpr char kRecordDelimiter = ';';

// Entity types.
inline constexpr int32_t kCopiousData = 106;
inline constexpr int32_t kLine = 110;
inline constexpr int32_t kPoint = 116;
inline constexpr int32_t kTransformation = 124;
inline constexpr int32_t kBSplineCurve = 126;
inline constexpr int32_t kBSplineSurface = 128;

// Directory Entry fields used by the reader: (record 0 or 1, field index).
struct DirectoryField {
    int record, field;
};
inline constexpr DirectoryField kEntityType{0, 0};
inline constexpr DirectoryField kParamPointer{0, 1};
inline constexpr DirectoryField kMatrixPointer{0, 6};
inline constexpr DirectoryField kEntityType2{1, 0};
inline constexpr DirectoryField kParamLines{1, 3};
inline constexpr DirectoryField kForm{1, 4};

// The form of a copious-data entity that is a polyline through 3-D points.
inline constexpr int32_t kPolylineForm = 12;

}  // namespace kw::iges
