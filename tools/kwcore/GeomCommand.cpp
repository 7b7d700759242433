// kwcore geom: a small calculator for checking transforms with the geometry
// kernel (double precision): rotations about an axis, Euler angles,
// quaternions and inverses.
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "Commands.h"
#include "kwcore/geometry/linear/CKWMatrix2T.h"
#include "kwcore/geometry/linear/CKWMatrix3T.h"
#include "kwcore/geometry/linear/CKWMatrix4T.h"
#include "kwcore/geometry/linear/CKWQuaternionT.h"

namespace kwCommands {
namespace {

typedef CKWVector3T<double, float> Vector3;
typedef CKWMatrix3T<double, float> Matrix3;
typedef CKWQuaternionT<double, float> Quaternion;

// Degrees are converted in full double precision: the kernel's own factors
// are single-precision values, which would show in six decimals.
const double kRadiansPerDegree = 3.14159265358979323846 / 180.0;

// Reads exactly count comma-separated finite numbers. On failure, prints why
// (after the command's name) and returns false.
bool ReadNumbers(const char* command, const char* what, const std::string& text, size_t count,
                 std::vector<double>& numbers) {
    numbers.clear();
    size_t start = 0;
    for (;;) {
        const size_t comma = text.find(',', start);
        const std::string piece =
            text.substr(start, comma == std::string::npos ? comma : comma - start);
        const char* begin = piece.c_str();
        char* end = nullptr;
        errno = 0;
        const double value = std::strtod(begin, &end);
        while (end && *end == ' ') {
            ++end;
        }
        if (piece.empty() || end == begin || *end != '\0' || errno == ERANGE ||
            !std::isfinite(value)) {
            std::fprintf(stderr, "kwcore geom %s: %s '%s': '%s' is not a finite number\n", command,
                         what, text.c_str(), piece.c_str());
            return false;
        }
        numbers.push_back(value);
        if (comma == std::string::npos) {
            break;
        }
        start = comma + 1;
    }
    if (numbers.size() != count) {
        std::fprintf(stderr, "kwcore geom %s: %s '%s' has %zu numbers, expected %zu\n", command,
                     what, text.c_str(), numbers.size(), count);
        return false;
    }
    return true;
}

// Six decimals, without the sign of a value that prints as zero.
std::string Format(double value) {
    char text[64];
    std::snprintf(text, sizeof(text), "%.6f", value);
    if (std::strcmp(text, "-0.000000") == 0) {
        return "0.000000";
    }
    return text;
}

void PrintMatrix(const char* label, const double* entries, int n) {
    for (int r = 0; r < n; ++r) {
        std::printf("%-11s[", r == 0 ? label : "");
        for (int c = 0; c < n; ++c) {
            std::printf(" %10s", Format(entries[r * n + c]).c_str());
        }
        std::printf(" ]\n");
    }
}

void PrintQuaternion(const Quaternion& q) {
    std::printf("quaternion w %s  x %s  y %s  z %s\n", Format(q.W()).c_str(), Format(q.X()).c_str(),
                Format(q.Y()).c_str(), Format(q.Z()).c_str());
}

void PrintVector(const char* label, const Vector3& v) {
    std::printf("%-11s%s, %s, %s\n", label, Format(v[0]).c_str(), Format(v[1]).c_str(),
                Format(v[2]).c_str());
}

// Options of the form --name VALUE, and positional arguments.
struct ParsedArguments {
    std::vector<std::pair<std::string, std::string>> options;
    std::vector<std::string> positional;
    const std::string* Find(const std::string& name) const {
        for (const auto& option : options) {
            if (option.first == name) {
                return &option.second;
            }
        }
        return nullptr;
    }
};

// False (after a message) for an option not in known or without its value.
bool ParseArguments(const char* command, const Arguments& args,
                    const std::vector<std::string>& known, ParsedArguments& parsed) {
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg.size() < 3 || arg.compare(0, 2, "--") != 0) {
            parsed.positional.push_back(arg);
            continue;
        }
        bool isKnown = false;
        for (const std::string& name : known) {
            isKnown = isKnown || name == arg;
        }
        if (!isKnown) {
            std::fprintf(stderr, "kwcore geom %s: unknown option '%s'\n", command, arg.c_str());
            return false;
        }
        if (arg == "--degrees") {
            parsed.options.emplace_back(arg, "");
            continue;
        }
        if (i + 1 == args.size()) {
            std::fprintf(stderr, "kwcore geom %s: option '%s' needs a value\n", command,
                         arg.c_str());
            return false;
        }
        parsed.options.emplace_back(arg, args[++i]);
    }
    return true;
}

const char kRotateHelp[] =
    "usage: kwcore geom rotate --axis X,Y,Z --angle DEGREES [--point X,Y,Z]\n"
    "\n"
    "The rotation by DEGREES about the axis (normalized here), counter-clockwise\n"
    "seen from the axis's tip: its matrix and quaternion, and the point rotated.\n";

int RunRotate(const Arguments& args) {
    if (WantsHelp(args)) {
        std::fputs(kRotateHelp, stdout);
        return 0;
    }
    ParsedArguments parsed;
    if (!ParseArguments("rotate", args, {"--axis", "--angle", "--point"}, parsed)) {
        return 2;
    }
    const std::string* axisText = parsed.Find("--axis");
    const std::string* angleText = parsed.Find("--angle");
    if (!axisText || !angleText || !parsed.positional.empty()) {
        std::fputs("kwcore geom rotate: expected --axis X,Y,Z and --angle DEGREES\n", stderr);
        return 2;
    }
    std::vector<double> axisValues, angleValues, pointValues;
    if (!ReadNumbers("rotate", "axis", *axisText, 3, axisValues) ||
        !ReadNumbers("rotate", "angle", *angleText, 1, angleValues)) {
        return 2;
    }
    const std::string* pointText = parsed.Find("--point");
    if (pointText && !ReadNumbers("rotate", "point", *pointText, 3, pointValues)) {
        return 2;
    }
    Vector3 axis(axisValues[0], axisValues[1], axisValues[2]);
    if (axis.Normalize() == 0) {
        std::fprintf(stderr, "kwcore geom rotate: the axis '%s' has no direction\n",
                     axisText->c_str());
        return 2;
    }
    const double radians = angleValues[0] * kRadiansPerDegree;
    const Matrix3 rotation(axis, radians);
    PrintVector("axis", axis);
    std::printf("angle      %s degrees, %s radians\n", Format(angleValues[0]).c_str(),
                Format(radians).c_str());
    PrintMatrix("matrix", rotation, 3);
    PrintQuaternion(Quaternion(axis, radians));
    if (pointText) {
        const Vector3 point(pointValues[0], pointValues[1], pointValues[2]);
        PrintVector("point", point);
        PrintVector("rotated", rotation * point);
    }
    return 0;
}

// The Euler orders by name, with their conversions.
struct EulerOrder {
    const char* name;
    void (Matrix3::*from)(double, double, double);
    bool (Matrix3::*to)(double&, double&, double&) const;
};

const EulerOrder kEulerOrders[] = {
    {"XYZ", &Matrix3::FromEulerAnglesXYZ, &Matrix3::ToEulerAnglesXYZ},
    {"XZY", &Matrix3::FromEulerAnglesXZY, &Matrix3::ToEulerAnglesXZY},
    {"YXZ", &Matrix3::FromEulerAnglesYXZ, &Matrix3::ToEulerAnglesYXZ},
    {"YZX", &Matrix3::FromEulerAnglesYZX, &Matrix3::ToEulerAnglesYZX},
    {"ZXY", &Matrix3::FromEulerAnglesZXY, &Matrix3::ToEulerAnglesZXY},
    {"ZYX", &Matrix3::FromEulerAnglesZYX, &Matrix3::ToEulerAnglesZYX},
};

const char kEulerHelp[] =
    "usage: kwcore geom euler [--order ORDER] [--degrees] A,B,C\n"
    "\n"
    "The rotation R1(A) * R2(B) * R3(C) about the axes ORDER names (XYZ, XZY,\n"
    "YXZ, YZX, ZXY or ZYX; XYZ by default), angles in radians unless --degrees:\n"
    "its matrix and quaternion, and the angles read back from the matrix. At\n"
    "gimbal lock (B = +-90 degrees) only one combination of A and C is fixed;\n"
    "the angles read back then have C = 0.\n";

int RunEuler(const Arguments& args) {
    if (WantsHelp(args)) {
        std::fputs(kEulerHelp, stdout);
        return 0;
    }
    ParsedArguments parsed;
    if (!ParseArguments("euler", args, {"--order", "--degrees"}, parsed)) {
        return 2;
    }
    if (parsed.positional.size() != 1) {
        std::fputs("kwcore geom euler: expected one list of three angles A,B,C\n", stderr);
        return 2;
    }
    const std::string* orderText = parsed.Find("--order");
    const EulerOrder* order = nullptr;
    for (const EulerOrder& candidate : kEulerOrders) {
        if (!orderText || *orderText == candidate.name) {
            order = &candidate;
            break;
        }
    }
    if (!order) {
        std::fprintf(stderr,
                     "kwcore geom euler: unknown order '%s' (XYZ, XZY, YXZ, YZX, ZXY or ZYX)\n",
                     orderText->c_str());
        return 2;
    }
    std::vector<double> angles;
    if (!ReadNumbers("euler", "angles", parsed.positional[0], 3, angles)) {
        return 2;
    }
    const bool degrees = parsed.Find("--degrees") != nullptr;
    double radians[3];
    for (int i = 0; i < 3; ++i) {
        radians[i] = degrees ? angles[i] * kRadiansPerDegree : angles[i];
    }
    Matrix3 rotation;
    (rotation.*order->from)(radians[0], radians[1], radians[2]);
    PrintMatrix("matrix", rotation, 3);
    PrintQuaternion(Quaternion(rotation));
    double back[3];
    const bool unique = (rotation.*order->to)(back[0], back[1], back[2]);
    std::printf("angles     %s %s, %s, %s%s%s\n", order->name,
                Format(degrees ? back[0] / kRadiansPerDegree : back[0]).c_str(),
                Format(degrees ? back[1] / kRadiansPerDegree : back[1]).c_str(),
                Format(degrees ? back[2] / kRadiansPerDegree : back[2]).c_str(),
                degrees ? " degrees" : " radians", unique ? "" : " (gimbal lock: not unique)");
    return 0;
}

const char kQuatHelp[] =
    "usage: kwcore geom quat W,X,Y,Z\n"
    "\n"
    "The rotation of the quaternion (normalized here): its matrix, axis and angle,\n"
    "and its Euler angles in the order XYZ.\n";

int RunQuat(const Arguments& args) {
    if (WantsHelp(args)) {
        std::fputs(kQuatHelp, stdout);
        return 0;
    }
    if (args.size() != 1) {
        std::fputs("kwcore geom quat: expected one quaternion W,X,Y,Z\n", stderr);
        return 2;
    }
    std::vector<double> values;
    if (!ReadNumbers("quat", "quaternion", args[0], 4, values)) {
        return 2;
    }
    Quaternion q(values[0], values[1], values[2], values[3]);
    if (q.Normalize() == 0) {
        std::fprintf(stderr, "kwcore geom quat: the quaternion '%s' is zero\n", args[0].c_str());
        return 2;
    }
    PrintQuaternion(q);
    Matrix3 rotation;
    q.ToRotationMatrix(rotation);
    PrintMatrix("matrix", rotation, 3);
    Vector3 axis;
    double angle;
    q.ToAxisAngle(axis, angle);
    PrintVector("axis", axis);
    std::printf("angle      %s degrees, %s radians\n", Format(angle / kRadiansPerDegree).c_str(),
                Format(angle).c_str());
    double x, y, z;
    const bool unique = rotation.ToEulerAnglesXYZ(x, y, z);
    std::printf("angles     XYZ %s, %s, %s radians%s\n", Format(x).c_str(), Format(y).c_str(),
                Format(z).c_str(), unique ? "" : " (gimbal lock: not unique)");
    return 0;
}

const char kInvertHelp[] =
    "usage: kwcore geom invert A,B,C,...\n"
    "\n"
    "The determinant and inverse of a 2x2, 3x3 or 4x4 matrix given by its 4, 9\n"
    "or 16 entries in row order. A matrix whose determinant is at most 2^-23 in\n"
    "magnitude counts as singular (exit status 1): the kernel's inverse of it is\n"
    "the zero matrix.\n";

template <class Matrix>
int PrintInverse(const std::vector<double>& entries, int n) {
    const Matrix m(entries.data(), true);
    const Matrix inverse = m.Inverse();
    PrintMatrix("matrix", m, n);
    std::printf("determinant %s\n", Format(m.Determinant()).c_str());
    if (inverse == Matrix::ZERO) {
        std::puts("singular: |determinant| <= 2^-23, the inverse is the zero matrix");
        return 1;
    }
    PrintMatrix("inverse", inverse, n);
    return 0;
}

int RunInvert(const Arguments& args) {
    if (WantsHelp(args)) {
        std::fputs(kInvertHelp, stdout);
        return 0;
    }
    if (args.size() != 1) {
        std::fputs("kwcore geom invert: expected one list of 4, 9 or 16 entries\n", stderr);
        return 2;
    }
    const size_t commas = size_t(std::count(args[0].begin(), args[0].end(), ','));
    const size_t count = commas + 1 == 4 || commas + 1 == 9 ? commas + 1 : 16;
    std::vector<double> entries;
    if (!ReadNumbers("invert", "matrix", args[0], count, entries)) {
        return 2;
    }
    if (count == 4) {
        return PrintInverse<CKWMatrix2T<double, float>>(entries, 2);
    }
    if (count == 9) {
        return PrintInverse<Matrix3>(entries, 3);
    }
    return PrintInverse<CKWMatrix4T<double, float>>(entries, 4);
}

const Command kGeomCommands[] = {
    {"rotate", "rotate a point about an axis: matrix, quaternion and result", RunRotate},
    {"euler", "Euler angles in any order to matrix and quaternion, and back", RunEuler},
    {"quat", "a quaternion's matrix, axis and angle, and Euler angles", RunQuat},
    {"invert", "determinant and inverse of a 2x2, 3x3 or 4x4 matrix", RunInvert},
};

}  // namespace

int RunGeomCommand(const Arguments& args) {
    return RunCommandFrom("kwcore geom", kGeomCommands, args);
}

}  // namespace kwCommands
