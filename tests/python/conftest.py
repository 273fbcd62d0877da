import pytest

import ztb


@pytest.fixture
def db():
    with ztb.Database() as database:
        yield database


@pytest.fixture
def diet(db):
    """Two foods, three nutrients, and what is in what, with one gap."""
    food = db.add_set("food", text="Things to eat")
    nutrient = db.add_set("nutrient")
    food.extend(["Milk", "Tofu"])
    nutrient.extend(["iron", "zinc", "kcal"])
    holds = db.add_parameter("holds", ["food", "nutrient"])
    holds["Milk", "iron"] = 1
    holds["Milk", "kcal"] = 3
    holds["Tofu", "zinc"] = 5
    return db
