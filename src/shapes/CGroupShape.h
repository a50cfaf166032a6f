// A shape that holds shapes. Its member list is a layer of its own, so
// whatever walks a layer walks a group too; the group's only geometry is
// the union of its members'. Every walk over a group tree keeps its own
// stack: nesting is limited by memory, not by the call stack.
#pragma once

#include "CObjShape.h"

namespace bvx {

class CGroupShape : public CObjShape {
public:
    CGroupShape();
    ~CGroupShape() override;

    CadLayer* GroupList() override { return list_.get(); }
    size_t MemberCount() const;
    // Joins the end of the list as a member of this group.
    void AddMember(std::unique_ptr<CObjShape> shape);
    // Out of the list, not destroyed, and in no group; null if not a member.
    std::unique_ptr<CObjShape> RemoveMember(const CObjShape* shape);

    // The two corners of the device bounds, in world points.
    WorldPoint GetPoint(int16_t index, const ShapeContext& view) const override;
    int16_t GetPointCount() const override { return 2; }
    // A corner moved moves the whole group: a group never stretches.
    bool SetPoint(int16_t index, double x, double y, ShapeContext* view) override;
    void Transform(const Matrix3& matrix, ShapeContext& view) override;
    double GetArea() const override;
    void Move(const WorldPoint& delta, ShapeContext& view) override;
    void UpdateBounds(const ShapeContext& view) override;
    WorldRect GetWorldBounds(const ShapeContext& view) const override;
    // The members drawn as a layer with their own pens; nothing is selected
    // for the group itself.
    void Draw(DeviceContext& dc, const DeviceRect& clip, ShapeContext& view, int32_t mode) override;
    void DrawHandles(DeviceContext& dc, uint32_t rop, ShapeContext& view) override;
    // The number of the first member, in list order, that has a shape
    // under the point; 0 for none.
    int32_t HitTest(DevicePoint point, ShapeContext& view) override;
    int16_t NearestPoint(DevicePoint point, ShapeContext& view) const override;
    std::unique_ptr<CObjShape> Clone(int16_t withAttr) const override;
    void SetSearchMethod(int16_t method) override;

    // The bounds of the members as they stand, none refreshed.
    void UniteMemberBounds();

private:
    // Applies `change` to every shape below the group that is not a group,
    // then brings every group's bounds up to date, deepest first.
    template <typename Change> void ChangeMembers(Change&& change);
    // A group like `source` with no members.
    static std::unique_ptr<CGroupShape> EmptyCopy(const CGroupShape& source, int16_t withAttr);

    std::unique_ptr<CadLayer> list_;
};

// The group a shape is, or null.
CGroupShape* AsGroup(CObjShape* shape);

} // namespace bvx
