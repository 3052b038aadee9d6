#include "OS/Mac/Effects/SheetMesh.h"

#include "OS/Mac/Effects/SpaceMath.h"

#include <algorithm>

using namespace SpaceMath;

namespace {

// One high, around the origin.
std::vector<i3DEffect::MeshPoint> rectangle(const XY<int>& size)
{
    const float half = 0.5f * static_cast<float>(size.x) / static_cast<float>(size.y);
    return {{{-half, 0.5f, 0.0f}, 0.0f, 0.0f},
            {{half, 0.5f, 0.0f}, 1.0f, 0.0f},
            {{-half, -0.5f, 0.0f}, 0.0f, 1.0f},
            {{half, -0.5f, 0.0f}, 1.0f, 1.0f}};
}

class Grid
{
public:
    Grid(int columns, int rows) : columns_(columns), rows_(rows) {}

    std::size_t at(int column, int row) const
    {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_ + 1) +
               static_cast<std::size_t>(column);
    }
    std::size_t points() const { return at(columns_, rows_) + 1; }

    template <class Code>
    void forEachQuad(Code code) const
    {
        for (int row = 0; row < rows_; ++row)
            for (int column = 0; column < columns_; ++column)
                code(at(column, row), at(column + 1, row), at(column, row + 1),
                     at(column + 1, row + 1));
    }

private:
    int columns_, rows_;
};

// Each point's is the sum of those of the quads around it.
std::vector<Vector> normalsOf(const std::vector<Vector>& places, const Grid& grid)
{
    std::vector<Vector> normals(places.size());
    grid.forEachQuad([&](std::size_t topLeft, std::size_t topRight, std::size_t bottomLeft,
                         std::size_t bottomRight) {
        // The diagonals' product counts a quad by its size, also one that ends in a point.
        const Vector normal =
            cross(places[bottomRight] - places[topLeft], places[topRight] - places[bottomLeft]);
        for (const std::size_t corner : {topLeft, topRight, bottomLeft, bottomRight})
            normals[corner] = normals[corner] + normal;
    });
    std::transform(normals.begin(), normals.end(), normals.begin(), unit);
    return normals;
}

} // namespace

std::optional<SheetMesh> SheetMesh::of(const i3DEffect::Sheet& sheet, const XY<int>& size,
                                       const Camera& camera, const XYZ<float>* lightDirection)
{
    const bool isPlain = sheet.mesh_.empty();
    const int columns = isPlain ? 1 : sheet.columns_, rows = isPlain ? 1 : sheet.rows_;
    if (columns < 1 || rows < 1 || columns > kMostQuads / rows || size.x < 1 || size.y < 1)
        return {};
    const Grid grid(columns, rows);
    const std::vector<i3DEffect::MeshPoint> points = isPlain ? rectangle(size) : sheet.mesh_;
    if (points.size() != grid.points())
        return {};
    std::vector<Vector> places;
    places.reserve(points.size());
    SheetMesh mesh;
    mesh.points.reserve(points.size());
    const auto f = [](double number) { return static_cast<float>(number); };
    for (const i3DEffect::MeshPoint& point : points) {
        const Vector own = vector(point.place_);
        const Place inSpace = transformed(sheet.model_, {own.x, own.y, own.z, 1.0});
        const Place seen = transformed(camera.projection, transformed(camera.view, inSpace));
        if (!isFinite(inSpace) || !isFinite(seen) || !std::isfinite(point.u_) ||
            !std::isfinite(point.v_))
            return {};
        places.push_back({inSpace.x, inSpace.y, inSpace.z});
        mesh.points.push_back(
            {{f(seen.x), f(-seen.y), f(seen.z), f(seen.w)}, point.u_, point.v_, 1.0f});
    }
    if (lightDirection) {
        const std::vector<Vector> normals = normalsOf(places, grid);
        const Vector direction = unit(vector(*lightDirection));
        for (std::size_t i = 0; i < normals.size(); ++i)
            mesh.points[i].facing = f(-dot(normals[i], direction));
    }
    grid.forEachQuad([&](std::size_t topLeft, std::size_t topRight, std::size_t bottomLeft,
                         std::size_t bottomRight) {
        for (const std::size_t corner :
             {topLeft, bottomLeft, bottomRight, topLeft, bottomRight, topRight})
            mesh.triangles.push_back(static_cast<unsigned int>(corner));
    });
    return mesh;
}
