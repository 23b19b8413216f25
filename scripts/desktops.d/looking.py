"""Finds in pictures of a screen what has changed."""

from PIL import ImageChops, ImageStat

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
