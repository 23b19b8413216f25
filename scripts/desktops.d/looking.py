"""Finds in pictures of a screen what has changed."""

from PIL import ImageChops, ImageFilter, ImageStat

from basics import Fault

NOISE = 24  # of 255: shadows and smoothed edges


def changed_box(before, after, area=None):
    """The box around all that differs, in the whole picture's pixels; None where nothing does."""
    left, top = (area or (0, 0))[:2]
    if area:
        before, after = before.crop(area), after.crop(area)
    difference = ImageChops.difference(before.convert('L'), after.convert('L')).point(lambda v: 255 * (v > NOISE))
    box = difference.getbbox()
    if box is None or (box[2] - box[0]) * (box[3] - box[1]) < 36:
        return None
    return box[0] + left, box[1] + top, box[2] + left, box[3] + top


def centre(box):
    return (box[0] + box[2]) // 2, (box[1] + box[3]) // 2


def brightness(picture, box):
    """0 to 255, of most of the box: the median does not see texts and lines."""
    return ImageStat.Stat(picture.crop(box).convert('L')).median[0]


def row_centre(box, entries, label, separator):
    """Where a menu shows an entry. separator: its height, in entries."""
    shown = [entry for entry in entries if entry[2]]
    heights = [1 if entry[1] else separator for entry in shown]
    index = next(i for i, entry in enumerate(shown) if entry[1].startswith(label))
    row = (box[3] - box[1]) / sum(heights)
    return (box[0] + box[2]) // 2, round(box[1] + row * (sum(heights[:index]) + heights[index] / 2))


def fits(seen, told, screen, scale=1):
    """Whether what is seen of a window is the box that the desktop tells, which has to be on the screen as a whole.
    Around it are its frame and its shadow."""
    around, within = 64 * scale, 8
    return min(told[:2]) >= 0 and told[2] <= screen[0] and told[3] <= screen[1] and \
        all(told[i] - around <= seen[i] <= told[i] + within for i in (0, 1)) and \
        all(told[i] - within <= seen[i] <= told[i] + around for i in (2, 3))


def sharpness(picture):
    """How much of what there is to see has the width of a pixel."""
    picture = picture.convert('L')

    def lost(radius):
        return ImageStat.Stat(ImageChops.difference(picture, picture.filter(ImageFilter.GaussianBlur(radius)))).mean[0]
    return lost(0.7) / lost(4)


def beside(box, other, area):
    """A point of the box and of the area that is well outside the other box."""
    margin = 24
    left, top, right, bottom = (choose(a, b) for choose, a, b in zip((max, max, min, min), box, area))
    for x, y in ((right - margin, (top + bottom) // 2), (left + margin, (top + bottom) // 2),
                 ((left + right) // 2, bottom - margin)):
        if not (other[0] - margin < x < other[2] + margin and other[1] - margin < y < other[3] + margin):
            return x, y
    raise Fault('one window hides the other')
