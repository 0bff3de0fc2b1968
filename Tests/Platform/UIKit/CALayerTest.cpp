#include "Platform/UIKit/CALayer.h"

#include <gtest/gtest.h>

namespace veyra {

using Layers = std::vector<std::shared_ptr<CALayer>>;

TEST(CALayerTest, AddingALayerTakesItFromItsFormerSuperlayer) {
    const auto first = std::make_shared<CALayer>(), second = std::make_shared<CALayer>();
    const auto layer = std::make_shared<CALayer>();
    first->addSublayer(layer);
    second->addSublayer(first->sublayers()[0]); // an element of the list that changes
    EXPECT_EQ(layer->superlayer(), second);
    EXPECT_TRUE(first->sublayers().empty());
    EXPECT_EQ(second->sublayers(), Layers{layer});
}

TEST(CALayerTest, SublayersAreInTheOrderOfAddingAndInsertingTakesAnIndex) {
    const auto root = std::make_shared<CALayer>();
    const auto a = std::make_shared<CALayer>(), b = std::make_shared<CALayer>(), c = std::make_shared<CALayer>();
    root->addSublayer(a);
    root->addSublayer(b);
    root->insertSublayerAtIndex(c, 1);
    EXPECT_EQ(root->sublayers(), (Layers{a, c, b}));
    root->insertSublayerAtIndex(a, 99);
    EXPECT_EQ(root->sublayers(), (Layers{c, b, a}));
}

TEST(CALayerTest, ALayerIsNotAddedUnderItself) {
    const auto top = std::make_shared<CALayer>(), middle = std::make_shared<CALayer>(),
               bottom = std::make_shared<CALayer>();
    top->addSublayer(middle);
    middle->addSublayer(bottom);
    bottom->addSublayer(top);
    top->addSublayer(top);
    EXPECT_EQ(top->superlayer(), nullptr);
    EXPECT_EQ(top->sublayers(), Layers{middle});
    EXPECT_TRUE(bottom->sublayers().empty());
}

TEST(CALayerTest, RemovingTheLastReferenceFromTheTreeFreesTheLayer) {
    const auto root = std::make_shared<CALayer>();
    root->addSublayer(std::make_shared<CALayer>());
    const std::weak_ptr<CALayer> weak = root->sublayers()[0];
    weak.lock()->removeFromSuperlayer();
    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(root->sublayers().empty());
}

TEST(CALayerTest, TheDelegateIsNotOwned) {
    const auto layer = std::make_shared<CALayer>();
    auto delegate = std::make_shared<CALayer>();
    layer->setDelegate(delegate);
    EXPECT_EQ(layer->delegate(), delegate);
    delegate.reset();
    EXPECT_EQ(layer->delegate(), nullptr);
}

} // namespace veyra
