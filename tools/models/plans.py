"""The buildings of the samples as drawings: numbers only."""

from .architecture import Plan, WallPlan

HOUSE_HEIGHT = 2.9
OFFICE_HEIGHT = 3.6

# The office stands on a grid of columns; both of its models are drawn on it.
OFFICE_GRID_X = (0.0, 6.0, 12.0, 18.0)
OFFICE_GRID_Y = (0.0, 5.5, 11.0)


def house(upper):
    """One storey of the house: 9 by 7 metres, two inner walls, the entrance only below."""
    front = [('window', 1.5), ('window', 6.8)] if upper else [('window', 1.5), ('door', 4.5)]
    return Plan(
        9.0, 7.0, HOUSE_HEIGHT,
        [WallPlan((0.0, 0.0), 9.0, 0.0, front),
         WallPlan((9.0, 0.0), 7.0, 90.0, [('window', 3.5)]),
         WallPlan((9.0, 7.0), 9.0, 180.0),
         WallPlan((0.0, 7.0), 7.0, 270.0),
         WallPlan((0.0, 4.2), 5.0, 0.0, [('door', 2.0)], inner=True),
         WallPlan((5.0, 0.0), 7.0, 90.0, [('door', 5.2)], inner=True)],
        [('Küche', 0.2, 0.2, 4.7, 3.9), ('Séjour & Büro', 5.1, 0.2, 3.7, 6.6)],
        [('Tisch Ø', 2.0, 2.0, 15.0), ('Lampe', 7.0, 3.3, 0.0)])


def office():
    """One storey of the office: 18 by 11 metres, a corridor wall and two partitions."""
    width, depth = OFFICE_GRID_X[-1], OFFICE_GRID_Y[-1]
    return Plan(
        width, depth, OFFICE_HEIGHT,
        [WallPlan((0.0, 0.0), width, 0.0, [('window', 3.0), ('window', 9.0), ('door', 15.0)]),
         WallPlan((width, 0.0), depth, 90.0, [('window', 2.75)]),
         WallPlan((width, depth), width, 180.0, [('window', 9.0)]),
         WallPlan((0.0, depth), depth, 270.0),
         WallPlan((0.0, 5.5), width, 0.0, [('door', 2.0), ('door', 14.0)], inner=True),
         WallPlan((6.0, 5.5), 5.5, 90.0, inner=True),
         WallPlan((12.0, 5.5), 5.5, 90.0, [('door', 1.0)], inner=True)],
        [('Großraumbüro', 0.2, 0.2, 17.6, 5.2), ('会議室', 0.2, 5.7, 5.7, 5.1),
         ('Archiv', 6.1, 5.7, 5.8, 5.1)],
        [('Tisch A', 3.0, 8.0, 0.0), ('Tisch B', 9.0, 2.0, 90.0), ('Lampe', 15.0, 8.0, 0.0)])
